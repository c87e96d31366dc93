#pragma once

/// A place in a search tree: that of a point, known by its index in a sequence.
struct Site {
    double x;
    double y;
    int rank;
};
