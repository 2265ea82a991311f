#pragma once

#include <QString>
#include <QVector>

/// One line of a table header: labels one array dimension.
struct HeaderLine {
    QString name;
    long long min = 0;
    long long max = 0;
    long long stride = 1; ///< sections a block of this line spans; computed from the lines before

    /// Number of indices from min to max: limited to the largest 64-bit number, zero or negative
    /// for inverted bounds.
    long long range() const;

    /// Whether the line has blocks to paint: its bounds and those of the lines before are not
    /// inverted.
    bool hasBlocks() const { return stride > 0 && range() > 0; }

    /// The array index that labels a block. Precondition: hasBlocks().
    long long label(long long block) const { return block % range() + min; }

    long long blockOf(long long section) const { return section / stride; }
    long long firstSection(long long block) const { return block * stride; }
    long long lastSection(long long block) const;

    /// Number of blocks that `sections` sections need.
    long long blockCount(long long sections) const;
};

/// Sets the stride of each line: the product of the ranges of the lines before it, limited to the
/// largest 64-bit number; 0 behind inverted bounds, where no block can be formed.
void computeStrides(QVector<HeaderLine> &lines);

/// Where the lines of a header lie across it: equal bands, line 0 next to the cells.
struct HeaderBands {
    int extent = 0; ///< thickness of the header in pixels
    int lines = 0;

    /// Distance of a line's band from the outer edge; line -1 stands for the edge at the cells.
    int start(int line) const;
    int length() const { return lines > 0 ? extent / lines : 0; }
};
