#pragma once

#include <QtGlobal>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

/// While it lives, the permissions of files hold for this process even if its user is above them.
class PermissionsHold {
public:
    PermissionsHold()
    {
        syscall(SYS_capget, &m_header, m_data);
        m_before = m_data[0].effective;
        m_data[0].effective &= ~(CAP_TO_MASK(CAP_DAC_OVERRIDE) | CAP_TO_MASK(CAP_DAC_READ_SEARCH));
        m_isSet = syscall(SYS_capset, &m_header, m_data) == 0;
    }
    ~PermissionsHold()
    {
        m_data[0].effective = m_before;
        syscall(SYS_capset, &m_header, m_data);
    }
    Q_DISABLE_COPY(PermissionsHold)

    /// Whether the system allows that.
    bool isSet() const { return m_isSet; }

private:
    __user_cap_header_struct m_header{ _LINUX_CAPABILITY_VERSION_3, 0 };
    __user_cap_data_struct m_data[_LINUX_CAPABILITY_U32S_3]{};
    __u32 m_before = 0;
    bool m_isSet = false;
};
