#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "Quorvel/Core/RememberedOrder.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

class Application;
class Files;

/// Where the order of the chips is kept: read once, written some seconds after a change, and on
/// quitting if a change is left. Nothing in it was set by the user, so one that cannot be
/// understood is reported on standard error and replaced. Bars on several displays share the file.
/// Main thread; the disk is waited for on another.
class OrderFile {
public:
    /// From the first change to the writing, whatever follows meanwhile.
    static constexpr Duration kWriteDelay = seconds(3);

    /// `makeOrder` is asked for what there is to write.
    OrderFile(Files&, Application&, Dispatch&, std::function<RememberedOrder()> makeOrder);
    ~OrderFile();
    OrderFile(const OrderFile&) = delete;
    OrderFile& operator=(const OrderFile&) = delete;

    /// The session's order, else that of the last session; absent if there is none.
    std::optional<RememberedOrder> read(const std::string& session);
    void writeSoon();

private:
    void write();
    void writeLastChange();
    void didWrite(std::error_code);

    Files& m_files;
    Application& m_application;
    Dispatch& m_dispatch;
    const std::function<RememberedOrder()> m_makeOrder;
    const std::string m_path; ///< empty if the system names no place for it
    bool m_isFailureTold = false;
    Subscription m_willTerminate;
    WorkItem m_writing;
    std::unique_ptr<Queue> m_queue; ///< while something is being written
    WeakOwner<OrderFile> m_weak{*this};
};

}
