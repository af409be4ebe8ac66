#include "server/storeworkers.h"

#include "server/referenceserver.h"

#include <QThread>

#include <atomic>
#include <cstdio>

namespace fenlark::server {

StoreWorkers::StoreWorkers(const QString &storePath, int count)
{
    static std::atomic<int> pools{0};
    const int pool = ++pools;
    for (int i = 0; i < std::max(1, count); ++i) {
        const QString name = QStringLiteral("fenlark-server-worker-%1-%2").arg(pool).arg(i);
        QThread *thread = QThread::create([this, storePath, name] { work(storePath, name); });
        thread->start();
        m_threads.push_back(thread);
    }
}

StoreWorkers::~StoreWorkers()
{
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_jobs.clear();
    }
    m_ready.notify_all();
    for (QThread *thread : m_threads) {
        thread->wait();
        delete thread;
    }
}

void StoreWorkers::post(Job job)
{
    {
        std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_ready.notify_one();
}

void StoreWorkers::work(const QString &storePath, const QString &connectionName)
{
    try {
        ReferenceServer store(storePath, connectionName);
        while (true) {
            Job job;
            {
                std::unique_lock lock(m_mutex);
                m_ready.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
                if (m_stopping)
                    return;
                job = std::move(m_jobs.front());
                m_jobs.pop_front();
            }
            job(store);
        }
    } catch (const std::exception &e) {
        std::fprintf(stderr, "fenlark-server: a worker stopped: %s\n", e.what());
    }
}

} // namespace fenlark::server
