#pragma once

#include "geometry/pointcatalogue.h"
#include "import/importoptions.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

/// Gives the vertices of objects their designations, contour by contour in the order of the file.
///
/// A vertex takes the name of the catalogue point at its place, or gets the next automatic number
/// and becomes a catalogue point itself. How a file is read on never depends on a name. So where
/// there are many vertices, and a processor for it, a thread of its own names them while the reader
/// goes on; until finish() has returned nobody else may use the catalogue.
class VertexNamer {
public:
    /// Names after `points`, with the prefix, the numbers and the order of coordinates of
    /// `options`. Neither is owned.
    VertexNamer(PointCatalogue& points, ImportOptions& options);
    /// Vertices that are not named yet stay without names.
    ~VertexNamer();
    VertexNamer(const VertexNamer&) = delete;
    VertexNamer& operator=(const VertexNamer&) = delete;

    /// Begins anew, with no objects.
    void start();
    /// Has the vertices of a contour named; they stay where they are until they are. The last one
    /// of a `closed` contour takes the name of the first. Throws what naming earlier
    /// vertices has thrown, and for want of memory; the contour has not been added then.
    void add(DefPoint* vertices, int count, bool closed);
    /// The contours of one more object have all been added.
    void endObject() { ++m_pending.objects; }
    /// Waits until all is named. Throws as add() does.
    void finish();
    /// Gives up what is not named yet.
    void abandon() noexcept;
    /// All contours of so many objects, from the first on, are named.
    int namedObjects() const { return m_namedObjects.load(std::memory_order_acquire); }

private:
    struct Contour {
        DefPoint* vertices;
        int count;
        bool closed;
        int objects; ///< so many are complete before it
    };
    /// Some contours on end.
    struct Batch {
        std::vector<Contour> contours;
        int vertices = 0;
        int objects = 0; ///< so many are complete with it and those before
    };

    void handOver();
    bool hasThread();
    void run();
    void stop();
    void throwFailure();
    void name(const Batch& batch) noexcept;
    void name(const Contour& contour);
    void nameExpected();
    QString vertexDef(double x, double y);

    PointCatalogue& m_points;
    ImportOptions& m_options;
    Batch m_pending;
    qint64 m_vertices = 0; ///< handed over

    // Of those that are named next: themselves, and what the catalogue has fetched for them.
    std::array<DefPoint*, PointCatalogue::mostExpected> m_next{};
    std::array<size_t, PointCatalogue::mostExpected> m_expected{};
    size_t m_nextCount = 0;

    std::thread m_thread;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Batch> m_waiting; ///< guarded, and so is the next
    bool m_isEnding = false;
    std::atomic<int> m_namedObjects{ 0 };
    std::atomic<bool> m_hasFailed{ false };
    std::exception_ptr m_failure; ///< once m_hasFailed is set
};
