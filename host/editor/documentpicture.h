// The picture of a drawing's shown tab.
#pragma once

#include "host/graphics/renderer.h"

namespace tarn::host {

class HostDocument;

/// Paints the model or the sheet with its viewports over `width` x `height` device pixels. The
/// painter is that of render().
void renderDocument(QPainter& painter, const HostDocument& document, int width, int height,
                    const RenderStyle& style);

}  // namespace tarn::host
