#include "support/unreadable_file.h"
#include <QFile>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr quint32 kOverrideBits = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

bool threadCapabilities(__user_cap_data_struct (&data)[2])
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capget, &header, data) == 0;
}

bool setThreadCapabilities(__user_cap_data_struct (&data)[2])
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    return syscall(SYS_capset, &header, data) == 0;
}

} // namespace

UnreadableFile::UnreadableFile(QString file) : m_file(std::move(file)), m_permissions(QFile::permissions(m_file))
{
    if (!QFile::setPermissions(m_file, QFileDevice::Permissions())) {
        m_error = QStringLiteral("cannot change the permissions of ") + m_file;
        return;
    }
    __user_cap_data_struct data[2]{};
    if (threadCapabilities(data) && (data[0].effective & kOverrideBits) != 0) {
        m_savedEffective = data[0].effective;
        data[0].effective &= ~kOverrideBits;
        m_capabilitiesDropped = setThreadCapabilities(data);
    }
    QFile probe(m_file);
    if (probe.open(QIODevice::ReadOnly))
        m_error = QStringLiteral("%1 can still be opened without permissions").arg(m_file);
}

UnreadableFile::~UnreadableFile()
{
    if (m_capabilitiesDropped) {
        __user_cap_data_struct data[2]{};
        if (threadCapabilities(data)) {
            data[0].effective = m_savedEffective;
            setThreadCapabilities(data);
        }
    }
    QFile::setPermissions(m_file, m_permissions);
}
