// Faces that the resources and the plots name and Linux lacks, and the faces drawn in their place.
#pragma once

#include <QFont>

namespace platform {

// The Qt font for a face named by a dialog template or a CFont, at a size in tenths of a point. Sizes are
// points at the screen's logical resolution for dialogs (pixelsAt96 false), or pixels at 96 dots per inch,
// truncated, for the plots' fonts (pixelsAt96 true).
QFont StandInFont(const char* face, int pointSizeTenths, bool pixelsAt96);

}  // namespace platform
