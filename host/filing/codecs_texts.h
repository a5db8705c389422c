// Lines of text as TEXT and ATTRIB have them.
#pragma once

#include "dbtext.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/tageditor.h"
#include "host/filing/tagview.h"

namespace tarn::host {

AcDbTextLine readTextLine(const DrawingBinding& binding, const TagView& tags);
/// The code of the vertical alignment, which TEXT and ATTRIB have at different places.
int verticalCodeOf(const TagView& tags);
/// `editor` has entered the first mark of the text; the vertical alignment stands behind the last.
void writeTextLine(const AcDbTextLine& line, TagEditor& editor, const char* lastMark,
                   int verticalCode);

}  // namespace tarn::host
