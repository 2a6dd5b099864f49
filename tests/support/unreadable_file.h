#pragma once
// Takes every permission from a file for as long as the object lives, so that
// this program can no longer open it, as when an administrator locks the
// station out of its database. A test run as root would read the file all
// the same: while the object lives, the calling thread also gives up its
// right to override file permissions (taken back at the end). The station
// under test must run on that thread.
#include <QFile>
#include <QString>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

class UnreadableFile {
public:
    explicit UnreadableFile(QString file) : m_file(std::move(file)), m_permissions(QFile::permissions(m_file))
    {
        if (!QFile::setPermissions(m_file, QFileDevice::Permissions())) {
            m_error = QStringLiteral("cannot change the permissions of ") + m_file;
            return;
        }
        __user_cap_data_struct data[2]{};
        if (capabilities(SYS_capget, data) && (data[0].effective & kOverrideBits) != 0) {
            m_savedEffective = data[0].effective;
            data[0].effective &= ~kOverrideBits;
            m_capabilitiesDropped = capabilities(SYS_capset, data);
        }
        if (QFile probe(m_file); probe.open(QIODevice::ReadOnly))
            m_error = QStringLiteral("%1 can still be opened without permissions").arg(m_file);
    }
    ~UnreadableFile()
    {
        __user_cap_data_struct data[2]{};
        if (m_capabilitiesDropped && capabilities(SYS_capget, data)) {
            data[0].effective = m_savedEffective;
            capabilities(SYS_capset, data);
        }
        QFile::setPermissions(m_file, m_permissions);
    }
    UnreadableFile(const UnreadableFile&) = delete;
    UnreadableFile& operator=(const UnreadableFile&) = delete;

    // False (with the reason) when the file could still be opened.
    bool effective() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

private:
    static constexpr quint32 kOverrideBits = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

    // The calling thread's capabilities read (SYS_capget) or set (SYS_capset).
    static bool capabilities(long call, __user_cap_data_struct (&data)[2])
    {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        return syscall(call, &header, data) == 0;
    }

    QString m_file;
    QFileDevice::Permissions m_permissions;
    bool m_capabilitiesDropped = false;
    quint32 m_savedEffective = 0;
    QString m_error;
};
