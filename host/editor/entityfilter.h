// Filter lists of selections.
#pragma once

struct resbuf;
class AcDbEntity;

namespace tarn::host {

/// Group codes 0 (kind), 8 (layer), 62 (colour), 60
/// (visibility) and 67 (0 model, 1 paper space); texts may hold '*', '?' and alternatives behind
/// commas. -4 brackets "<AND", "<OR", "<NOT". False for a list with anything else.
bool isFilterKnown(const resbuf* filter);

/// Whether the entity, open for read, fits every item; an empty list fits all.
bool fitsFilter(const AcDbEntity& entity, const resbuf* filter);

}  // namespace tarn::host
