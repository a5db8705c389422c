// How the entities that are drawn stand in drawing files.
#pragma once

#include <string>
#include <vector>

#include "dbents.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/tageditor.h"

namespace tarn::host {

/// An entity in the file: its own tags, and what belongs to it behind them (vertices, attributes).
struct EntityTags {
  DrawingBinding& binding;
  TagView head;         ///< behind the mark of its kind
  std::uint32_t first;  ///< the entity itself
  std::uint32_t count;  ///< with its parts

  TagView part(std::uint32_t index) const { return binding.view(first + 1 + index); }
  std::uint32_t partCount() const { return count - 1; }
};

/// Writing of one entity. `old` is what stood in the file, or null for a new one; handles of new
/// parts come from the database.
struct EntityOutput {
  DrawingBinding& binding;
  TagEditor& head;
  const EntityTags* old;
  std::string parts;  ///< bytes behind the head
  /// A new one that began as a copy: `old` is what it was made from.
  bool isCopy = false;
  std::uint32_t newParts = 0;  ///< how many have got a handle

  /// A part of `old` to be written again; of a copy it gets a handle of its own.
  TagEditor part(std::uint32_t index, const AcDbEntity& entity);
  /// The handle of the next new part; 0 for a drawing without.
  std::uint64_t nextHandle(const AcDbEntity& entity);
};

/// One kind of entity. `read` makes an object with its own data, or null when this one is not
/// understood and stays raw; `write` sets its own data.
struct EntityCodec {
  const char* type;      ///< as in the file
  const char* subclass;  ///< its mark; null for none
  AcRxClass* (*description)();
  AcDbEntity* (*read)(const EntityTags& tags);
  void (*write)(const AcDbEntity& entity, EntityOutput& output);
  /// A new entity of the class can be written so, in a file of R12 or a later one.
  bool inOld;
  bool inNew;
  /// The class is the host's own: the drawing lists it, for the programs that do not know it.
  bool isOwn = false;
  bool hasThickness = false;
};

const std::vector<EntityCodec>& cloudCodecs();
const std::vector<EntityCodec>& curveCodecs();
const std::vector<EntityCodec>& textCodecs();
const std::vector<EntityCodec>& traceCodecs();
const std::vector<EntityCodec>& hatchCodecs();
const std::vector<EntityCodec>& imageCodecs();
const std::vector<EntityCodec>& annotationCodecs();
const std::vector<EntityCodec>& multiLeaderCodecs();
const std::vector<EntityCodec>& endlessLineCodecs();
const std::vector<EntityCodec>& compoundCodecs();
const std::vector<EntityCodec>& netCodecs();
/// A polyline that is a net; null for one that contradicts itself.
AcDbEntity* readNet(const EntityTags& tags);
/// Null for a kind that is not drawn.
const EntityCodec* codecOf(std::string_view type);
/// How an entity stands in the file as this kind, which several classes may share; null when it is
/// of none of them.
const EntityCodec* codecOf(std::string_view type, const AcDbEntity& entity);
/// Entities of the class stand in files only as part of the drawing that they were made in.
bool isBoundToDrawing(const AcRxClass& description);
/// How a new entity is written; null when a drawing of this age cannot hold it.
const EntityCodec* codecFor(const AcDbEntity& entity, bool old);

/// Reads the entity at `object` into the block (null: it is only counted) and returns how many
/// objects of the file it takes up. It ends at `end`.
std::uint32_t readEntity(DrawingBinding& binding, std::uint32_t object, std::uint32_t end,
                         AcDbObjectId block);

/// Layer, colour and visibility.
void readCommon(DrawingBinding& binding, const TagView& tags, AcDbEntity& entity);
void writeCommon(const DrawingBinding& binding, const AcDbEntity& entity, TagEditor& editor);
/// Line type, line weight, true colour, transparency, thickness. Only what differs from the file's
/// (`old`) is written, and only what a drawing of its version can hold.
void readProperties(DrawingBinding& binding, const TagView& tags, AcDbEntity& entity);
void writeProperties(DrawingBinding& binding, const AcDbEntity& entity, const BoundObject* old,
                     TagEditor& editor);
void writeThickness(const DrawingBinding& binding, const AcDbEntity& entity, const BoundObject* old,
                    TagEditor& editor);

/// A colour index of the file as the database has it.
Adesk::UInt16 entityColor(int inFile);
Adesk::UInt16 layerColor(int inFile);
std::wstring recordName(AcDbObjectId record);

}  // namespace tarn::host
