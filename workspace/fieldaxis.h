// The data plot's field, one axis at a time: its size in pixels, where a value stands on it, and what value a
// pixel offset stands for. The paint (shell/dataplot.cpp) and the sweep of the decision grid over what the
// field shows (CDataPlot::SeenRange, which a run asks) share it.
#pragma once

#include <cmath>

// Pixels beyond this distance are all alike: far outside any surface, still a safe int.
constexpr double kFarPixels = 1.0e6;

inline long ClampPixel(double at) { return static_cast<long>(std::fmax(-kFarPixels, std::fmin(kFarPixels, at))); }

struct FieldAxis {
    FieldAxis(double minimum, double maximum, double step) : min(minimum), extent(maximum - minimum) {
        // A step that is not a positive number cannot come from ComputeStep; should a feeder leave one, the
        // axis maps one unit to one pixel.
        scaleStep = step > 0.0 && std::isfinite(step) ? step : 1.0;
        size = std::isfinite(extent) ? ClampPixel(extent / scaleStep) : 0;
    }

    // The value whose offset is offset: where the pixel column or row offset from the field's start begins.
    double ValueAt(double offset) const {
        if (extent == 0.0 || !std::isfinite(extent) || size == 0) return min + offset * scaleStep;
        return min + offset * extent / static_cast<double>(size);
    }

    // False for a value that is not a finite number: it has no place on the field.
    bool Offset(double value, long* offset) const {
        if (!std::isfinite(value)) return false;
        // An axis of zero extent (one pattern, or an input that never changes) has no divisor: it maps by
        // its step, so the value sits at the middle of the control with the grid's steps around it.
        if (extent == 0.0 || !std::isfinite(extent) || size == 0)
            *offset = ClampPixel((value - min) / scaleStep);
        else
            *offset = ClampPixel((value - min) * size / extent);
        return true;
    }

    double min;
    double extent;
    double scaleStep;
    long size;
};
