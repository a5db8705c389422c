// The image source of a rectification: what it draws now, as IImageDivision.
#pragma once

class IImageDivision;

namespace tarn::rectify {

class Rectification;

/// With a count of one, which the caller owns. It keeps the rectification alive and always shows
/// its current state; block reads may come from several threads, also while that changes.
IImageDivision* makeRectifiedSource(Rectification& rectification);

}  // namespace tarn::rectify
