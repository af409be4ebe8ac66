#pragma once

#include <QString>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

class QThread;

namespace fenlark::server {

class ReferenceServer;

// A few threads, each with its own connection to the store, that do the store's
// work for the HTTP front. The front's own thread only reads and writes sockets,
// so one client's exchange never holds up the reading of the others, and a job
// waits only for a free worker, never for a particular one.
class StoreWorkers {
public:
    using Job = std::function<void(ReferenceServer &store)>;

    StoreWorkers(const QString &storePath, int count);
    // Lets the jobs under way finish, drops those still waiting, ends the threads.
    ~StoreWorkers();
    StoreWorkers(const StoreWorkers &) = delete;
    StoreWorkers &operator=(const StoreWorkers &) = delete;

    void post(Job job);

private:
    void work(const QString &storePath, const QString &connectionName);

    std::mutex m_mutex;
    std::condition_variable m_ready;
    std::deque<Job> m_jobs;
    bool m_stopping = false;
    std::vector<QThread *> m_threads;
};

} // namespace fenlark::server
