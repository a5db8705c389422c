// What connects a drawing file with the objects made from it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "dbmain.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "host/database/headervariables.h"
#include "host/filing/encoding.h"
#include "host/filing/tagdocument.h"
#include "host/filing/tagview.h"

namespace tarn::host {

/// An object and the run of file objects that it was made from: one, or a polyline with its
/// vertices and their end.
struct BoundObject {
  AcDbObjectId id;
  std::uint32_t first = 0;
  std::uint32_t count = 1;
};

/// What the header says of the whole drawing, but for the current layer and what stands in objects;
/// a value that cannot be is the usual one.
HeaderVariables headerVariablesOf(const TagDocument& document);

class RenamedRecords;

struct DrawingBinding {
  TagDocument document;
  TextEncoding encoding;
  std::unique_ptr<AcDbDatabase> database;

  std::vector<BoundObject> bound;  ///< in the order of the file
  /// Objects that the file takes for granted without naming them; written only once they change.
  std::set<AcDbStub*> implied;
  std::unordered_map<std::string, AcDbObjectId> layers;  ///< by the bytes of the name
  std::unordered_map<std::string, AcDbObjectId> linetypes;
  std::map<std::wstring, AcDbObjectId> blocks;             ///< by the name in lower case
  std::unordered_map<AcDbStub*, std::uint32_t> blockEnds;  ///< the ENDBLK of a block's definition
  std::map<std::string, size_t> kept;  ///< kinds of entities that are not drawn, and how many
  /// Entities of classes that may be registered later, and their block.
  struct Waiting {
    std::uint32_t object;
    AcDbObjectId block;
    AcDbObjectId proxy;  ///< what stands for it; null when the file does not list its class
  };
  std::vector<Waiting> waiting;
  /// The files of image definitions by their handles; read when the first image asks.
  std::optional<std::map<std::uint64_t, std::wstring>> imageFiles;
  /// The classes that the file lists, by their names in files; read when the first one is asked
  /// for.
  std::optional<std::map<std::wstring, ProxyFacts>> classes;
  AcDbObjectId modelSpace;
  AcDbObjectId paperSpace;
  bool hasHandles = true;
  /// See partHandle(); by the owner and the number.
  std::map<std::pair<AcDbStub*, std::uint32_t>, std::uint64_t> partHandles;
  /// What the file calls by other names than the database; made for each saving.
  std::shared_ptr<const RenamedRecords> renamed;

  TagView view(std::uint32_t object) const { return {document, encoding, object}; }
  /// Makes the database own a new object that stands for `first` and the following.
  AcDbObjectId add(AcDbObject* object, std::uint32_t first, std::uint32_t count = 1);
  /// The same for one that the file does not name.
  AcDbObjectId addImplied(AcDbObject* object);
  /// The object of a handle; null when there is none.
  AcDbObjectId find(std::uint64_t handle) const;
  /// The handle of a part that a file has and the database does not: a vertex, an attribute, the
  /// begin and end of a block. Given when the part is first written and the same from then on.
  std::uint64_t partHandle(AcDbObjectId owner, std::uint32_t number);
  /// The layer of a name as it stands in the file, made when the file has none of it.
  AcDbObjectId layerOf(std::string_view name);
  /// The same of a line type; null for the layer's own.
  AcDbObjectId linetypeOf(std::string_view name);
  /// The style of texts of a name; null when there is none.
  AcDbObjectId styleOf(const std::wstring& name) const;
  /// The block of a name; null when there is none.
  AcDbObjectId blockOf(const std::wstring& name) const;
};

/// The steps of reading, in this order. None fails: what is broken stays in the file as it is. The
/// progress is told now and then, as a share.
void bindTables(DrawingBinding& binding);
void bindBlocks(DrawingBinding& binding);
void bindEntities(DrawingBinding& binding, const std::function<void(double)>& progress);
void bindDictionaries(DrawingBinding& binding);

/// Gives objects the extension dictionaries that they name; `firstObject` is the first of the
/// section OBJECTS among the bound.
void linkExtensions(DrawingBinding& binding, size_t firstObject);

/// Puts the same drawing in a later version in the place of the file that was read: the same
/// objects in the same order.
void raiseVersion(DrawingBinding& binding, std::string bytes);

/// Makes entities of waiting ones whose class is registered now; returns how many.
size_t bindWaiting(DrawingBinding& binding);

}  // namespace tarn::host
