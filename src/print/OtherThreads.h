#pragma once
// Work going on in other threads while the calling thread waits for it and tells the caller,
// every 50 ms, how far a print run is: the progress window stays alive and its cancel button
// works while the second half of a run is drawn, the halves are read and the file is written.
#include "print/PrintRun.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace print {

class OtherThreads {
public:
    OtherThreads() = default;
    OtherThreads(const OtherThreads&) = delete;
    OtherThreads& operator=(const OtherThreads&) = delete;
    ~OtherThreads();

    // Runs `work` on a thread of its own.
    void start(std::function<void()> work);

    // Waits until every work has ended, telling `progress` every 50 ms the page that `page()`
    // gives. A cancel there sets `cancel` for the work to heed; returns whether the caller
    // cancelled, also when the cancel came after the work's last look at `cancel`.
    bool wait(const Progress& progress, const std::function<int()>& page, int total,
              std::atomic<bool>& cancel);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_running = 0;
    std::vector<std::thread> m_threads;
};

} // namespace print
