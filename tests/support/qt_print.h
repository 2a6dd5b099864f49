#pragma once
// Readable failure messages for Qt texts and JSON objects.
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QJsonObject& object, std::ostream* os)
{
    *os << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}
