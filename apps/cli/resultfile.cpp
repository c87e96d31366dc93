#include "resultfile.h"

#include "fileprogress.h"
#include "interrupt.h"
#include "outputfile.h"

#include <chrono>
#include <optional>
#include <utility>

ResultFile::ResultFile(QString target, ResultOptions options)
    : m_target(std::move(target))
    , m_options(std::move(options))
    , m_thread([this] { run(); })
{
}

ResultFile::~ResultFile()
{
    if (m_thread.joinable())
        end(End::Dropped);
}

bool ResultFile::isOfUse(const QString& target)
{
    return OutputFile::appearsAtEnd(target) && std::thread::hardware_concurrency() > 1;
}

void ResultFile::take(const QVector<DefPolygon>& objects)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(objects);
    }
    m_changed.notify_one();
}

void ResultFile::commit()
{
    end(End::Committed);
    if (m_failure)
        std::rethrow_exception(m_failure);
}

void ResultFile::end(End how)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_end = how;
    }
    m_changed.notify_one();
    m_thread.join();
}

void ResultFile::run()
{
    try {
        write();
    } catch (...) {
        m_failure = std::current_exception();
    }
}

void ResultFile::write()
{
    using namespace std::chrono_literals;
    std::optional<OutputFile> out(m_target);
    ResultWriter writer(*out, m_options);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (m_end != End::Dropped && (m_end == End::Open || !m_waiting.empty())) {
        if (m_waiting.empty()) {
            m_changed.wait_for(lock, 100ms);
            // As long as there is a temporary file a signal waits for somebody to remove that.
            if (Interrupt::requested()) {
                out.reset();
                Interrupt::obey();
            }
            continue;
        }
        const QVector<DefPolygon> objects = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        for (const DefPolygon& object : objects) {
            writer.write(object);
            FileProgress::countObject();
        }
        lock.lock();
    }
    if (m_end == End::Dropped)
        return;
    writer.finish();
    out->commit();
}
