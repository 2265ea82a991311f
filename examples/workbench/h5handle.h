#pragma once

#include <hdf5.h>

#include <utility>

/// Owns one HDF5 identifier and closes it with the function of its kind; a negative identifier is
/// none.
class H5Handle
{
public:
    using CloseFunction = herr_t (*)(hid_t);

    H5Handle() = default;
    H5Handle(hid_t id, CloseFunction close)
        : m_id(id)
        , m_close(close)
    {
    }
    H5Handle(H5Handle &&other) noexcept
        : m_id(std::exchange(other.m_id, -1))
        , m_close(other.m_close)
    {
    }
    H5Handle &operator=(H5Handle &&other) noexcept
    {
        std::swap(m_id, other.m_id);
        std::swap(m_close, other.m_close);
        return *this;
    }
    ~H5Handle()
    {
        if (isValid())
            m_close(m_id);
    }

    bool isValid() const { return m_id >= 0; }
    hid_t id() const { return m_id; }

private:
    hid_t m_id = -1;
    CloseFunction m_close = nullptr;
};
