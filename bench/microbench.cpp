// The hot pieces one by one, each beside the plain way to the same answers.

#include "bareresult.h"
#include "catalogue/coordformat.h"
#include "geometry/conflicts.h"
#include "geometry/designation.h"
#include "geometry/nearestindex.h"
#include "geometry/pointcatalogue.h"
#include "geometry/sequenceindex.h"
#include "hostileplaces.h"
#include "import/number.h"
#include "layouts.h"
#include "literal/literalcatalogue.h"
#include "literal/literalgeometry.h"
#include "resultwriter.h"

#include <QLocale>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <type_traits>

namespace {

const char* const placeLayouts[] = { "city", "grid", "column", "random" };
constexpr int literalSizes[] = { 1000, 10000 };
constexpr int sizes[] = { 1000, 10000, 100000, 1000000 };
constexpr int defaultSize = 100000;
constexpr int hostileSizes[] = { 10000, 20000, 100000 };

struct Input {
    std::vector<Shape> shapes;
    QVector<DefPoint> points; ///< distinct ones, in the order in which they are met
    QVector<DefPoint> sortedPoints;
    QVector<DefPolygon> objects;
};

QVector<DefPoint> makePoints(const std::vector<Shape>& shapes)
{
    QVector<DefPoint> points;
    for (const Vertex& vertex : distinctVertices(shapes))
        points.append(DefPoint{ pointDef(points.size()), vertex.x, vertex.y });
    return points;
}

QVector<DefPolygon> makeObjects(const std::vector<Shape>& shapes)
{
    QVector<DefPolygon> objects;
    int number = 0;
    for (const Shape& shape : shapes) {
        DefPolygon object{ objectDef(objects.size()), {} };
        for (const Ring& ring : shape.rings) {
            QVector<DefPoint> contour;
            for (const Vertex& vertex : ring)
                contour.append(DefPoint{ pointDef(number++), vertex.x, vertex.y });
            object.contours.append(contour);
        }
        objects.append(object);
    }
    return objects;
}

const Input& inputOf(const std::string& layout, int vertexCount)
{
    static std::map<std::pair<std::string, int>, Input> inputs;
    const auto key = std::make_pair(layout, vertexCount);
    const auto known = inputs.find(key);
    if (known != inputs.end())
        return known->second;

    Input input;
    input.shapes = makeLayout(QString::fromStdString(layout), vertexCount);
    input.points = makePoints(input.shapes);
    input.sortedPoints = input.points;
    sortPoints(input.sortedPoints);
    input.objects = makeObjects(input.shapes);
    return inputs.emplace(key, std::move(input)).first->second;
}

void countItems(benchmark::State& state, int itemsPerIteration)
{
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * itemsPerIteration);
}

// Catalogue

void catalogueFind(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    PointCatalogue catalogue;
    for (const DefPoint& point : input.points)
        catalogue.append(point);
    catalogue.arrange();
    for (auto _ : state) {
        for (const DefPoint& point : input.points)
            benchmark::DoNotOptimize(catalogue.findCoincident(point.x, point.y));
    }
    countItems(state, input.points.size());
}

void literalFind(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    for (auto _ : state) {
        for (const DefPoint& point : input.points)
            benchmark::DoNotOptimize(
                literal::findNearestPoint(input.sortedPoints, QPointF(point.x, point.y)));
    }
    countItems(state, input.points.size());
}

void catalogueInsert(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    for (auto _ : state) {
        PointCatalogue catalogue;
        for (const DefPoint& point : input.points) {
            if (!catalogue.findCoincident(point.x, point.y))
                catalogue.insert(point);
        }
        benchmark::DoNotOptimize(catalogue.size());
    }
    countItems(state, input.points.size());
}

void literalInsert(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    for (auto _ : state) {
        literal::Catalogue catalogue;
        for (const DefPoint& point : input.points) {
            if (catalogue.findCoincident(point.x, point.y) < 0)
                catalogue.insert(point);
        }
        benchmark::DoNotOptimize(catalogue.points.size());
    }
    countItems(state, input.points.size());
}

// Index

void indexBuild(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    for (auto _ : state) {
        const NearestIndex index(input.sortedPoints);
        benchmark::DoNotOptimize(index.points().constData());
    }
    countItems(state, input.sortedPoints.size());
}

/// The queries are the places of the labels: in the grid each one has four points at the same
/// distance.
void indexFind(benchmark::State& state, const char* layout, int size)
{
    const Input& input = inputOf(layout, size);
    const NearestIndex index(input.sortedPoints);
    for (auto _ : state) {
        for (const Shape& shape : input.shapes)
            benchmark::DoNotOptimize(index.find(QPointF(shape.label.x, shape.label.y)));
    }
    countItems(state, static_cast<int>(input.shapes.size()));
}

// Hostile places

void hostileInsert(benchmark::State& state, const HostilePlaces& places, int size)
{
    const QVector<DefPoint> points = places.make(size);
    for (auto _ : state) {
        PointCatalogue catalogue;
        for (const DefPoint& point : points) {
            if (!catalogue.findCoincident(point.x, point.y))
                catalogue.insert(point);
        }
        benchmark::DoNotOptimize(catalogue.size());
    }
    countItems(state, size);
}

/// Arranges the points and looks each of them up.
void hostileArrange(benchmark::State& state, const HostilePlaces& places, int size)
{
    const QVector<DefPoint> points = places.make(size);
    for (auto _ : state) {
        PointCatalogue catalogue;
        for (const DefPoint& point : points)
            catalogue.append(point);
        catalogue.arrange();
        for (const DefPoint& point : points)
            benchmark::DoNotOptimize(catalogue.findCoincident(point.x, point.y));
    }
    countItems(state, size);
}

/// Makes an index over as many labels as there are questions.
template <typename Index>
void hostileFind(benchmark::State& state, const HostileLabels& labels, int size)
{
    QVector<DefPoint> points = labels.make(size);
    if (std::is_same_v<Index, NearestIndex>)
        sortPoints(points);
    for (auto _ : state) {
        const Index index(points);
        for (int i = 0; i < size; ++i)
            benchmark::DoNotOptimize(index.find(labels.query(i)));
    }
    countItems(state, size);
}

// Numbers

QStringList numberTexts()
{
    QStringList texts;
    for (const DefPoint& point : inputOf("city", 10000).points)
        texts << QString::number(point.x, 'f', 2) << QString::number(point.y, 'f', 4);
    return texts;
}

void parseNumbers(benchmark::State& state, double (*parse)(const QString& text, bool* ok))
{
    const QStringList texts = numberTexts();
    for (auto _ : state) {
        for (const QString& text : texts) {
            bool ok = false;
            benchmark::DoNotOptimize(parse(text, &ok));
        }
    }
    countItems(state, texts.size());
}

void formatNumbers(benchmark::State& state, QString (*format)(double value))
{
    const QVector<DefPoint>& points = inputOf("city", 10000).points;
    for (auto _ : state) {
        for (const DefPoint& point : points)
            benchmark::DoNotOptimize(format(point.x));
    }
    countItems(state, points.size());
}

// Objects

void splitDefs(benchmark::State& state)
{
    const QVector<DefPolygon>& objects = inputOf("city", defaultSize).objects;
    for (auto _ : state) {
        for (const DefPolygon& object : objects) {
            QString prefix;
            int number = 0;
            splitDef(object.def, prefix, number);
            benchmark::DoNotOptimize(number);
        }
    }
    countItems(state, objects.size());
}

void sortAll(benchmark::State& state, int size)
{
    const QVector<DefPolygon>& objects = inputOf("city", size).objects;
    for (auto _ : state) {
        QVector<DefPolygon> sorted = objects;
        sortObjects(sorted);
        benchmark::DoNotOptimize(sorted.constData());
    }
    countItems(state, objects.size());
}

void markDuplicates(benchmark::State& state, int size)
{
    const QVector<DefPolygon>& objects = inputOf("city", size).objects;
    for (auto _ : state)
        benchmark::DoNotOptimize(duplicateDefs(objects));
    countItems(state, objects.size());
}

void markConflicts(benchmark::State& state, int size)
{
    const DefPolygon& object = inputOf("single", size).objects.constLast();
    for (auto _ : state)
        benchmark::DoNotOptimize(conflictingPoints(object));
    countItems(state, size);
}

// Result

void writeObjects(benchmark::State& state)
{
    const QVector<DefPolygon>& objects = inputOf("city", defaultSize).objects;
    for (auto _ : state)
        benchmark::DoNotOptimize(resultText(objects, ResultOptions()));
    countItems(state, defaultSize);
}

void writeSameElements(benchmark::State& state)
{
    const QVector<DefPolygon>& objects = inputOf("city", defaultSize).objects;
    const QString text = resultText(objects, ResultOptions());
    const BareResult bare(text);
    if (bare.write() != text)
        state.SkipWithError("the bare writer wrote another text");
    for (auto _ : state)
        benchmark::DoNotOptimize(bare.write());
    countItems(state, defaultSize);
}

template <size_t Count>
void registerPlaces(const char* name, const int (&withSizes)[Count],
    void (*run)(benchmark::State&, const char* layout, int size))
{
    for (const char* layout : placeLayouts) {
        for (const int size : withSizes) {
            const std::string title = std::string(name) + '/' + layout + '/' + std::to_string(size);
            benchmark::RegisterBenchmark(title.c_str(), run, layout, size)
                ->Unit(benchmark::kMillisecond);
        }
    }
}

void registerSizes(const char* name, void (*run)(benchmark::State&, int size))
{
    for (const int size : sizes) {
        const std::string title = std::string(name) + '/' + std::to_string(size);
        benchmark::RegisterBenchmark(title.c_str(), run, size)->Unit(benchmark::kMillisecond);
    }
}

template <typename Places>
void registerHostile(const char* name, const QVector<Places>& places,
    void (*run)(benchmark::State&, const Places& places, int size))
{
    for (const Places& each : places) {
        for (const int size : hostileSizes) {
            const std::string title =
                std::string(name) + '/' + each.name + '/' + std::to_string(size);
            benchmark::RegisterBenchmark(title.c_str(), run, each, size)
                ->Unit(benchmark::kMillisecond);
        }
    }
}

void registerAll()
{
    registerPlaces("PointCatalogue find", sizes, catalogueFind);
    registerPlaces("literal find", literalSizes, literalFind);
    registerPlaces("PointCatalogue insert", sizes, catalogueInsert);
    registerPlaces("literal insert", literalSizes, literalInsert);
    registerPlaces("NearestIndex build", sizes, indexBuild);
    registerPlaces("NearestIndex find", sizes, indexFind);
    registerHostile("hostile insert", hostileInserted(), hostileInsert);
    registerHostile("hostile arrange", hostileArranged(), hostileArrange);
    registerHostile("hostile NearestIndex", hostileSorted(), hostileFind<NearestIndex>);
    registerHostile("hostile SequenceIndex", hostileUnsorted(), hostileFind<SequenceIndex>);
    benchmark::RegisterBenchmark("toDouble", parseNumbers,
        [](const QString& text, bool* ok) { return toDouble(QStringView(text), ok); });
    benchmark::RegisterBenchmark("QString::toDouble", parseNumbers,
        [](const QString& text, bool* ok) { return text.toDouble(ok); });
    benchmark::RegisterBenchmark(
        "formatFixed", formatNumbers, [](double value) { return formatFixed(value, 2); });
    benchmark::RegisterBenchmark("QLocale::toString", formatNumbers,
        [](double value) { return QLocale::c().toString(value, 'f', 2); });
    benchmark::RegisterBenchmark("splitDef", splitDefs);
    registerSizes("sortObjects", sortAll);
    registerSizes("duplicateDefs", markDuplicates);
    registerSizes("conflictingPoints", markConflicts);
    benchmark::RegisterBenchmark("writeResult", writeObjects)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("QXmlStreamWriter alone", writeSameElements)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char* argv[])
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
