#pragma once

#include <QFile>
#include <QString>

#include <sys/fsuid.h>
#include <unistd.h>

/// Lets tests about permissions say the same when the superuser runs them: while it lives, files are opened
/// by this thread as by an ordinary user, who owns `folder` but not what is in it.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const QString& folder) {
        if (geteuid() == 0) {
            m_isSwitched = chown(QFile::encodeName(folder).constData(), nobody, -1) == 0;
            setfsuid(nobody);
        }
    }
    ~OrdinaryUser() {
        if (m_isSwitched) {
            setfsuid(0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    bool m_isSwitched = false;
};
