// VqZIP.ZIP: attachments are gzip streams. The whole stream is inflated in
// memory before the target is touched, so a corrupt source leaves the target
// as it was.
#include "host/object_factory.h"
#include <QFile>
#include <zlib.h>

namespace {

QByteArray gunzip(const QByteArray& source, const QString& sourcePath)
{
    auto corrupt = [&sourcePath](const QString& why) {
        return HostError(HostErrors::FileError, QStringLiteral("Cannot decompress %1: %2").arg(sourcePath, why));
    };
    if (source.isEmpty())
        throw corrupt(QStringLiteral("empty file"));

    QByteArray out;
    z_stream zs{};
    // 16 + MAX_WBITS: gzip header and trailer, checked by zlib.
    if (inflateInit2(&zs, 16 + MAX_WBITS) != Z_OK)
        throw corrupt(QStringLiteral("zlib init"));
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(source.constData()));
    zs.avail_in = uInt(source.size());
    char buffer[64 * 1024];
    int rc = Z_OK;
    for (;;) {
        zs.next_out = reinterpret_cast<Bytef*>(buffer);
        zs.avail_out = sizeof buffer;
        rc = inflate(&zs, Z_NO_FLUSH);
        out.append(buffer, qsizetype(sizeof buffer - zs.avail_out));
        if (rc == Z_STREAM_END) {
            // Concatenated members make one file, as gzip itself reads them.
            if (zs.avail_in == 0)
                break;
            if (inflateReset(&zs) != Z_OK)
                break;
            continue;
        }
        if (rc != Z_OK) {
            const QString why = rc == Z_BUF_ERROR ? QStringLiteral("unexpected end of data")
                : zs.msg ? QString::fromLatin1(zs.msg) : QStringLiteral("zlib error %1").arg(rc);
            inflateEnd(&zs);
            throw corrupt(why);
        }
        if (zs.avail_in == 0 && zs.avail_out != 0) {
            inflateEnd(&zs);
            throw corrupt(QStringLiteral("unexpected end of data"));
        }
    }
    inflateEnd(&zs);
    return out;
}

class ZipDecompressor : public IZip {
public:
    void DeCompress(const QString& sourcePath, const QString& targetPath) override
    {
        QFile source(sourcePath);
        if (!source.open(QIODevice::ReadOnly))
            throw HostError(HostErrors::FileError, QStringLiteral("File not found: %1").arg(sourcePath));
        const QByteArray data = gunzip(source.readAll(), sourcePath);

        // The target is written over in place: every order load writes each
        // picture again, mostly with the same bytes, and replacing the file
        // instead would free its blocks each time (a discard on some disks).
        QFile target(targetPath);
        if (!target.open(QIODevice::ReadWrite) || target.write(data) != data.size() || !target.resize(data.size())
            || !target.flush())
            throw HostError(HostErrors::FileError, QStringLiteral("Cannot write %1: %2").arg(targetPath, target.errorString()));
    }
};

const BuiltInServerObject registration(ProgIds::Zip, [] { return std::make_shared<ZipDecompressor>(); });

} // namespace
