#include "import/vertexnamer.h"

#include "geometry/designation.h"

#include <utility>

namespace {

/// So many vertices, and those that end their contour, are handed over at a time.
constexpr int batchSize = 2048;
/// With fewer vertices a thread is not worth its start.
constexpr qint64 leastForThread = 16384;

} // namespace

VertexNamer::VertexNamer(PointCatalogue& points, ImportOptions& options)
    : m_points(points)
    , m_options(options)
{
}

VertexNamer::~VertexNamer()
{
    abandon();
}

void VertexNamer::start()
{
    abandon();
    m_vertices = 0;
    m_nextCount = 0;
    m_namedObjects = 0;
    m_hasFailed = false;
    m_failure = nullptr;
}

void VertexNamer::add(DefPoint* vertices, int count, bool closed)
{
    if (m_pending.vertices >= batchSize)
        handOver();
    m_pending.contours.push_back({ vertices, count, closed, m_pending.objects });
    m_pending.vertices += count;
}

void VertexNamer::abandon() noexcept
{
    m_pending = Batch();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.clear();
    }
    stop();
}

void VertexNamer::finish()
{
    handOver();
    stop();
    throwFailure();
}

void VertexNamer::handOver()
{
    throwFailure();
    m_vertices += m_pending.vertices;
    Batch next;
    next.objects = m_pending.objects;
    if (hasThread()) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(std::move(m_pending));
        m_changed.notify_one();
    } else {
        name(m_pending);
    }
    m_pending = std::move(next);
    throwFailure();
}

bool VertexNamer::hasThread()
{
    if (m_thread.joinable())
        return true;
    if (m_vertices < leastForThread || m_options.inOneThread
        || std::thread::hardware_concurrency() < 2)
        return false;
    try {
        m_thread = std::thread([this] { run(); });
        return true;
    } catch (const std::exception&) {
        // Without one, nothing is lost but time.
        return false;
    }
}

void VertexNamer::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_hasFailed) {
        m_changed.wait(lock, [this] { return !m_waiting.empty() || m_isEnding; });
        if (m_waiting.empty())
            return;
        const Batch batch = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        name(batch);
        lock.lock();
    }
}

/// Waits for the thread to name what is waiting, and ends it.
void VertexNamer::stop()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_one();
    m_thread.join();
    m_isEnding = false;
}

void VertexNamer::throwFailure()
{
    if (!m_hasFailed)
        return;
    stop();
    std::rethrow_exception(m_failure);
}

void VertexNamer::name(const Batch& batch) noexcept
{
    try {
        for (const Contour& contour : batch.contours) {
            m_namedObjects.store(contour.objects, std::memory_order_release);
            name(contour);
        }
        m_namedObjects.store(batch.objects, std::memory_order_release);
    } catch (...) {
        m_failure = std::current_exception();
        m_hasFailed = true;
    }
}

void VertexNamer::name(const Contour& contour)
{
    DefPoint* const end = contour.vertices + contour.count - (contour.closed ? 1 : 0);
    for (DefPoint* vertex = contour.vertices; vertex != end; ++vertex) {
        m_next[m_nextCount] = vertex;
        m_expected[m_nextCount] = m_options.swapXY ? m_points.expect(vertex->y, vertex->x)
                                                   : m_points.expect(vertex->x, vertex->y);
        if (++m_nextCount == m_next.size())
            nameExpected();
    }
    nameExpected();
    if (contour.closed)
        end->def = contour.vertices->def;
}

void VertexNamer::nameExpected()
{
    const size_t count = std::exchange(m_nextCount, 0);
    m_points.expectPoints(m_expected.data(), count);
    for (size_t i = 0; i < count; ++i) {
        DefPoint& vertex = *m_next[i];
        vertex.def =
            m_options.swapXY ? vertexDef(vertex.y, vertex.x) : vertexDef(vertex.x, vertex.y);
    }
}

QString VertexNamer::vertexDef(double x, double y)
{
    if (const DefPoint* point = m_points.findCoincident(x, y))
        return point->def;
    QString def = numberedDef(m_options.pointPref, m_options.pointStartNum++);
    m_points.insert(DefPoint{ def, x, y });
    return def;
}
