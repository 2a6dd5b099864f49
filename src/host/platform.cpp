#include "host/platform.h"
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <dlfcn.h>
#include <unistd.h>

namespace {
QString& overriddenFolder()
{
    static QString folder;
    return folder;
}
} // namespace

QString ComponentFolder()
{
    if (!overriddenFolder().isEmpty())
        return overriddenFolder();
    static const QString folder = [] {
        Dl_info info{};
        if (dladdr(reinterpret_cast<void*>(&ComponentFolder), &info) != 0 && info.dli_fname) {
            const QString lib = QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
            return QDir::cleanPath(lib) + QLatin1Char('/');
        }
        return QDir::cleanPath(QCoreApplication::applicationDirPath()) + QLatin1Char('/');
    }();
    return folder;
}

void SetComponentFolder(const QString& folder)
{
    QString f = folder;
    if (!f.isEmpty() && !f.endsWith(QLatin1Char('/')))
        f += QLatin1Char('/');
    overriddenFolder() = f;
}

QString NativePath(const QString& path)
{
    QString p = path;
    p.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (p.contains(QLatin1String("//")))
        p.replace(QLatin1String("//"), QLatin1String("/"));
    return p;
}

QString ComponentPath(const QString& backslashName)
{
    return NativePath(ComponentFolder() + backslashName);
}

qint64 CurrentProcessId() { return qint64(::getpid()); }

bool IsNumeric(const QString& text)
{
    const QString t = text.trimmed();
    int i = 0;
    const int n = t.size();
    if (i < n && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-')))
        ++i;
    int digits = 0;
    while (i < n && t[i].isDigit() && t[i].unicode() < 128) { ++i; ++digits; }
    if (i < n && t[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && t[i].isDigit() && t[i].unicode() < 128) { ++i; ++digits; }
    }
    if (digits == 0)
        return false;
    if (i < n && (t[i] == QLatin1Char('e') || t[i] == QLatin1Char('E') || t[i] == QLatin1Char('d') || t[i] == QLatin1Char('D'))) {
        ++i;
        if (i < n && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-')))
            ++i;
        int expDigits = 0;
        while (i < n && t[i].isDigit() && t[i].unicode() < 128) { ++i; ++expDigits; }
        if (expDigits == 0)
            return false;
    }
    return i == n;
}

namespace {
double dpiScale()
{
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (QScreen* s = app->primaryScreen())
            return s->logicalDotsPerInch() / 96.0;
    }
    return 1.0;
}
} // namespace

int TwipsToPixels(int twips) { return qRound(twips / 15.0 * dpiScale()); }
int PixelsToTwips(int pixels) { return qRound(pixels * 15.0 / dpiScale()); }

QString TrimBlanks(const QString& text)
{
    qsizetype start = 0, end = text.size();
    while (start < end && text.at(start) == QLatin1Char(' '))
        ++start;
    while (end > start && text.at(end - 1) == QLatin1Char(' '))
        --end;
    return text.mid(start, end - start);
}
