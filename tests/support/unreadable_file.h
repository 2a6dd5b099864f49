#pragma once
// Takes every permission from a file for as long as the object lives, so that
// this program can no longer open it, as when an administrator locks the
// station out of its database. A test run as root would read the file all
// the same: while the object lives, the calling thread also gives up its
// right to override file permissions (taken back at the end). The station
// under test must run on that thread.
#include <QFileDevice>
#include <QString>

class UnreadableFile {
public:
    explicit UnreadableFile(QString file);
    ~UnreadableFile();
    UnreadableFile(const UnreadableFile&) = delete;
    UnreadableFile& operator=(const UnreadableFile&) = delete;

    // False (with the reason) when the file could still be opened.
    bool effective() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

private:
    QString m_file;
    QFileDevice::Permissions m_permissions;
    bool m_capabilitiesDropped = false;
    quint32 m_savedEffective = 0;
    QString m_error;
};
