#include "print/OtherThreads.h"

#include <chrono>

namespace print {

OtherThreads::~OtherThreads() {
    std::atomic<bool> ignored{false};
    wait({}, {}, 0, ignored);
}

void OtherThreads::start(std::function<void()> work) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_running;
    }
    m_threads.emplace_back([this, work = std::move(work)] {
        work();
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            --m_running;
        }
        m_changed.notify_all();
    });
}

bool OtherThreads::wait(const Progress& progress, const std::function<int()>& page, int total,
                        std::atomic<bool>& cancel) {
    bool cancelled = false;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_changed.wait_for(lock, std::chrono::milliseconds(50), [&] { return m_running == 0; })) {
            if (!progress || cancel) continue;
            // The caller's progress window handles its events: the work must not wait for us.
            lock.unlock();
            const int p = page();
            if (!progress(p, total > 0 ? static_cast<double>(p) / total : 1.0)) {
                cancelled = true;
                cancel = true;
            }
            lock.lock();
        }
    }
    for (std::thread& t : m_threads)
        t.join();
    m_threads.clear();
    return cancelled;
}

} // namespace print
