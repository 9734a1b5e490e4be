// Icon resources as Qt images, for the layer's windows.
#pragma once

class QImage;
class QIcon;

namespace platform {

// An icon resource as an image (empty when there is no such icon).
QImage IconImage(int iconId);
QIcon IconOf(int iconId);

}  // namespace platform
