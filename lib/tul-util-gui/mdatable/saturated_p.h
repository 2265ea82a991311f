#pragma once

#include <limits>

// Arithmetic on section numbers and counts, which hosts and files may drive to the ends of the
// 64-bit range: results that do not fit stick to the nearer end instead of overflowing.
namespace tul
{

constexpr long long lowest64 = std::numeric_limits<long long>::min();
constexpr long long highest64 = std::numeric_limits<long long>::max();

/// The largest pixel coordinate of the table: it leaves 32768 pixels below the end of int, so that
/// adding a viewport's worth of pixels does not overflow.
constexpr int pixelLimit = 2147450879;

constexpr long long saturatedAdd(long long a, long long b)
{
    long long sum = 0;
    // Overflow needs operands of one sign, so either of them tells the end.
    return __builtin_add_overflow(a, b, &sum) ? (a < 0 ? lowest64 : highest64) : sum;
}

constexpr long long saturatedSub(long long a, long long b)
{
    long long difference = 0;
    return __builtin_sub_overflow(a, b, &difference) ? (a < 0 ? lowest64 : highest64) : difference;
}

constexpr long long saturatedMul(long long a, long long b)
{
    long long product = 0;
    const bool negative = (a < 0) != (b < 0);
    return __builtin_mul_overflow(a, b, &product) ? (negative ? lowest64 : highest64) : product;
}

/// The number of indices in first..last; 0 or negative when last lies before first.
constexpr long long saturatedCount(long long first, long long last)
{
    return saturatedAdd(saturatedSub(last, first), 1);
}

constexpr int clampToInt(long long value)
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    return value < lowest ? lowest : value > highest ? highest : static_cast<int>(value);
}

/// The pixels that so many sections of that size take, at most pixelLimit either way; 0 when the
/// size is not positive.
constexpr int pixelProduct(long long visible, int size)
{
    if (size <= 0)
        return 0;
    // Compared before multiplying, because the product of a huge count overflows.
    const int most = pixelLimit / size;
    if (visible > most)
        return pixelLimit;
    return visible < -most ? -pixelLimit : static_cast<int>(visible * size);
}

} // namespace tul
