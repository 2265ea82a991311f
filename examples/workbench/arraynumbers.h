#pragma once

#include <QString>

#include <cstring>
#include <vector>

/// A row of numbers of one kind, without loss: whole numbers of up to 64 bits with or without a
/// sign, or doubles.
class ArrayNumbers
{
public:
    enum class Kind { Signed, Unsigned, Real };

    explicit ArrayNumbers(Kind kind = Kind::Real, int count = 0)
        : m_kind(kind)
        , m_values(static_cast<std::size_t>(count))
    {
    }

    Kind kind() const { return m_kind; }
    int count() const { return static_cast<int>(m_values.size()); }

    /// The values as `count()` qint64, quint64 or double.
    void *data() { return m_values.data(); }

    /// Copies one number of another row, which must be of the same kind.
    void set(int index, const ArrayNumbers &from, int fromIndex)
    {
        m_values[static_cast<std::size_t>(index)]
            = from.m_values[static_cast<std::size_t>(fromIndex)];
    }

    /// A number as the table shows it: whole numbers in full, doubles with six digits.
    QString text(int index) const
    {
        const quint64 &value = m_values[static_cast<std::size_t>(index)];
        switch (m_kind) {
        case Kind::Signed:
            return QString::number(static_cast<qint64>(value));
        case Kind::Unsigned:
            return QString::number(value);
        case Kind::Real:
            break;
        }
        double real;
        static_assert(sizeof(real) == sizeof(value));
        std::memcpy(&real, &value, sizeof(real));
        return QString::number(real, 'g', 6);
    }

private:
    Kind m_kind;
    std::vector<quint64> m_values;
};
