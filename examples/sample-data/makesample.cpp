// Writes the file that the workbench shows when it is given none. Every run writes the same bytes.
//
// - /temperature, 365 x 48: a year of daily means at 48 stations
// - /huge, 10^12 x 1000, nearly all of it unwritten: written cells hold 1000 row + column
// - /simulation, 12 x 6 x 40 x 60: a field over time, level, latitude and longitude
// - /notes, a list of strings, and /version, a scalar: neither has a table

#include <workbench/h5handle.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace
{

using Extents = std::vector<hsize_t>;

constexpr double pi = 3.14159265358979323846;

// A number in -1..1 that looks random and depends on its arguments alone.
double noise(std::uint64_t a, std::uint64_t b)
{
    std::uint64_t x = a * 0x9E3779B97F4A7C15U + b * 0xC2B2AE3D27D4EB4FU + 0x165667B19E3779F9U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    x ^= x >> 31U;
    return static_cast<double>(x >> 11U) / static_cast<double>(1ULL << 52U) - 1.0;
}

float rounded(double value, double step)
{
    return static_cast<float>(std::round(value / step) * step);
}

// How every dataset is created: without times, so that the file is the same in every run.
H5Handle creationProperties()
{
    H5Handle properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
    H5Pset_obj_track_times(properties.id(), false);
    return properties;
}

H5Handle createDataset(hid_t file, const char *name, hid_t type, const Extents &extents,
                       const H5Handle &properties)
{
    const H5Handle space(extents.empty() ? H5Screate(H5S_SCALAR)
                                         : H5Screate_simple(static_cast<int>(extents.size()),
                                                            extents.data(), nullptr),
                         H5Sclose);
    return {H5Dcreate2(file, name, type, space.id(), H5P_DEFAULT, properties.id(), H5P_DEFAULT),
            H5Dclose};
}

bool label(const H5Handle &dataset, const std::vector<const char *> &names)
{
    const H5Handle type(H5Tcopy(H5T_C_S1), H5Tclose);
    H5Tset_size(type.id(), H5T_VARIABLE);
    H5Tset_cset(type.id(), H5T_CSET_UTF8);
    const hsize_t count = names.size();
    const H5Handle space(H5Screate_simple(1, &count, nullptr), H5Sclose);
    const H5Handle attribute(H5Acreate2(dataset.id(), "DIMENSION_LABELS", type.id(), space.id(),
                                        H5P_DEFAULT, H5P_DEFAULT),
                             H5Aclose);
    return H5Awrite(attribute.id(), type.id(), names.data()) >= 0;
}

bool writeAll(const H5Handle &dataset, hid_t type, const void *values)
{
    return H5Dwrite(dataset.id(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0;
}

bool writeTemperature(hid_t file)
{
    constexpr int days = 365;
    constexpr int stations = 48;
    std::vector<float> values;
    values.reserve(days * stations);
    for (int day = 0; day < days; ++day) {
        for (int station = 0; station < stations; ++station) {
            const double climate = 9.5 + 4.0 * noise(1, static_cast<unsigned>(station));
            const double season = -9.0 * std::cos(2.0 * pi * (day - 20) / days);
            const double weather = 3.0 * noise(2, static_cast<unsigned>(day / 5))
                + 2.0 * noise(3, static_cast<unsigned>(day * stations + station));
            values.push_back(rounded(climate + season + weather, 0.1));
        }
    }
    const H5Handle dataset = createDataset(file, "temperature", H5T_IEEE_F32LE, {days, stations},
                                           creationProperties());
    return writeAll(dataset, H5T_NATIVE_FLOAT, values.data()) && label(dataset, {"day", "station"});
}

// Writes `rows` full rows from `firstRow` on.
bool writeRows(const H5Handle &dataset, hsize_t firstRow, hsize_t rows, hsize_t columns)
{
    std::vector<std::int64_t> values(rows * columns);
    for (hsize_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<std::int64_t>(firstRow * columns + i);
    const Extents start{firstRow, 0};
    const Extents count{rows, columns};
    const H5Handle fileSpace(H5Dget_space(dataset.id()), H5Sclose);
    const H5Handle memorySpace(H5Screate_simple(2, count.data(), nullptr), H5Sclose);
    return H5Sselect_hyperslab(fileSpace.id(), H5S_SELECT_SET, start.data(), nullptr, count.data(),
                               nullptr)
        >= 0
        && H5Dwrite(dataset.id(), H5T_NATIVE_INT64, memorySpace.id(), fileSpace.id(), H5P_DEFAULT,
                    values.data())
        >= 0;
}

bool writeHuge(hid_t file)
{
    constexpr hsize_t rows = 1'000'000'000'000;
    constexpr hsize_t columns = 1'000;
    const Extents chunk{64, 100};
    const H5Handle properties = creationProperties();
    if (H5Pset_chunk(properties.id(), 2, chunk.data()) < 0 || H5Pset_shuffle(properties.id()) < 0
        || H5Pset_deflate(properties.id(), 6) < 0)
        return false;
    const H5Handle dataset
        = createDataset(file, "huge", H5T_STD_I64LE, {rows, columns}, properties);
    // The second half million is easily scrolled to, 50 million with any ordinary font. How far a
    // table can scroll depends on the height of its rows; 10^8 is about the limit.
    return writeRows(dataset, 0, 1'024, columns) && writeRows(dataset, 500'224, 512, columns)
        && writeRows(dataset, 50'000'000 - 128, 1'024, columns)
        && writeRows(dataset, 100'000'000 - 256, 1'024, columns)
        && writeRows(dataset, rows - 512, 512, columns) && label(dataset, {"sample", "channel"});
}

bool writeSimulation(hid_t file)
{
    const Extents extents{12, 6, 40, 60};
    std::vector<float> values;
    values.reserve(extents[0] * extents[1] * extents[2] * extents[3]);
    for (hsize_t time = 0; time < extents[0]; ++time) {
        for (hsize_t level = 0; level < extents[1]; ++level) {
            for (hsize_t lat = 0; lat < extents[2]; ++lat) {
                for (hsize_t lon = 0; lon < extents[3]; ++lon) {
                    const double latitude = (static_cast<double>(lat) / 39.0 - 0.5) * pi;
                    const double phase = 2.0 * pi
                        * (3.0 * static_cast<double>(lon) / 60.0
                           - static_cast<double>(time) / 12.0);
                    const double field = 300.0 - 45.0 * std::pow(std::sin(latitude), 2.0)
                        - 11.0 * static_cast<double>(level)
                        + 4.0 * std::cos(latitude) * std::sin(phase);
                    values.push_back(rounded(field, 0.01));
                }
            }
        }
    }
    const H5Handle dataset
        = createDataset(file, "simulation", H5T_IEEE_F32LE, extents, creationProperties());
    return writeAll(dataset, H5T_NATIVE_FLOAT, values.data())
        && label(dataset, {"time", "level", "latitude", "longitude"});
}

bool writeOthers(hid_t file)
{
    const H5Handle text(H5Tcopy(H5T_C_S1), H5Tclose);
    H5Tset_size(text.id(), H5T_VARIABLE);
    const std::vector<const char *> notes{"made-up numbers", "the same in every run",
                                          "temperatures in degrees Celsius"};
    const H5Handle notesSet
        = createDataset(file, "notes", text.id(), {notes.size()}, creationProperties());
    const H5Handle versionSet
        = createDataset(file, "version", H5T_STD_I32LE, {}, creationProperties());
    const int version = 1;
    return writeAll(notesSet, text.id(), notes.data())
        && writeAll(versionSet, H5T_NATIVE_INT, &version);
}

bool writeSample(const char *fileName)
{
    // The order of creation is kept, so that the ordinary dataset comes first.
    const H5Handle properties(H5Pcreate(H5P_FILE_CREATE), H5Pclose);
    H5Pset_link_creation_order(properties.id(), H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED);
    const H5Handle file(H5Fcreate(fileName, H5F_ACC_TRUNC, properties.id(), H5P_DEFAULT), H5Fclose);
    return file.isValid() && writeTemperature(file.id()) && writeHuge(file.id())
        && writeSimulation(file.id()) && writeOthers(file.id())
        && H5Fflush(file.id(), H5F_SCOPE_LOCAL) >= 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: makesample FILE\n");
        return 2;
    }
    if (!writeSample(argv[1])) {
        std::fprintf(stderr, "makesample: cannot write \"%s\"\n", argv[1]);
        std::remove(argv[1]);
        return 1;
    }
    return 0;
}
