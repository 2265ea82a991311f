#pragma once

#include <workbench/h5handle.h>

#include <QFile>

#include <vector>

/// A new HDF5 file, for arrays of any kind.
struct NewH5File {
    const H5Handle file;

    explicit NewH5File(const QString &name)
        : file(
            H5Fcreate(QFile::encodeName(name).constData(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT),
            H5Fclose)
    {
    }

    H5Handle add(const char *name, hid_t type, const std::vector<hsize_t> &extents,
                 const void *data = nullptr, hid_t memoryType = H5T_NATIVE_INT64,
                 hid_t properties = H5P_DEFAULT) const
    {
        const int rank = static_cast<int>(extents.size());
        const H5Handle space(H5Screate_simple(rank, extents.data(), nullptr), H5Sclose);
        H5Handle set(
            H5Dcreate2(file.id(), name, type, space.id(), H5P_DEFAULT, properties, H5P_DEFAULT),
            H5Dclose);
        if (data)
            H5Dwrite(set.id(), memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, data);
        return set;
    }
};
