#include "host/filing/drawingfile.h"

#include <algorithm>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "host/database/databaseinit.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/filing/binarydrawing.h"
#include "host/filing/deepclone.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/drawingwriter.h"
#include "host/filing/olddrawing.h"
#include "host/filing/proxies.h"
#include "host/filing/versioner.h"

namespace tarn::host {

namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{4} << 30;
/// Handles beyond are taken for damage; new ones must not follow them.
constexpr std::uint64_t kHighestHandle = std::uint64_t{1} << 60;

// How far reading has come, in hundredths.
constexpr int kFileRead = 10;
constexpr int kTagsFound = 35;
constexpr int kEntitiesRead = 90;

/// R2007, the first that is UTF-8 throughout.
constexpr char kVersionOfNew[] = "AC1021";

bool isDwg(std::string_view bytes) {
  // "AC1015" and binary data, or the older "AC1.50" and "AC2.10".
  return bytes.substr(0, 2) == "AC" && bytes.size() > 6 && bytes[2] >= '0' && bytes[2] <= '9' &&
         bytes.substr(0, 64).find('\0') != std::string_view::npos;
}

std::uint64_t firstFreeHandle(const TagDocument& document) {
  std::uint64_t seed = 0;
  const TagRange range = document.headerVariable("$HANDSEED");
  if (range.begin < range.end) seed = parseHandle(document.word(document.tag(range.begin)));
  std::uint64_t highest = 0;
  for (std::uint32_t object = 0; object < document.objectCount(); ++object) {
    const std::uint64_t handle = document.handleOf(object);
    if (handle < kHighestHandle) highest = std::max(highest, handle);
  }
  return std::max(highest + 1, seed < kHighestHandle ? seed : 0);
}

AcDbObjectId firstSheet(AcDbDatabase& database) {
  for (const LayoutEntry& entry : layoutsOf(database)) {
    if (!entry.isModel) return entry.block;
  }
  return {};
}

bool usesHandles(const TagDocument& document) {
  if (!document.isOld()) return true;
  for (const DrawingSection& entities : document.sectionsNamed("ENTITIES")) {
    const std::uint32_t first = entities.firstObject + 1;
    if (first < entities.endObject) return document.handleOf(first) != 0;
  }
  return false;
}

PieceTaker gatherIn(std::string& whole) {
  return [&whole](std::string_view piece) {
    whole += piece;
    return Status();
  };
}

/// Brings the file that was read back after another one stood in its place.
class GroundKeeper {
 public:
  explicit GroundKeeper(DrawingBinding& binding)
      : binding_(binding),
        document_(binding.document),
        encoding_(binding.encoding),
        bound_(binding.bound),
        implied_(binding.implied),
        blockEnds_(binding.blockEnds),
        waiting_(binding.waiting),
        hasHandles_(binding.hasHandles) {
    for (AcDbStub* slot : implied_) changed_.push_back(slot->changed);
  }
  ~GroundKeeper() {
    binding_.document = std::move(document_);
    binding_.encoding = encoding_;
    binding_.bound = std::move(bound_);
    size_t at = 0;
    for (AcDbStub* slot : implied_) slot->changed = changed_[at++];
    binding_.implied = std::move(implied_);
    binding_.blockEnds = std::move(blockEnds_);
    binding_.waiting = std::move(waiting_);
    binding_.hasHandles = hasHandles_;
  }
  GroundKeeper(const GroundKeeper&) = delete;
  GroundKeeper& operator=(const GroundKeeper&) = delete;

 private:
  DrawingBinding& binding_;
  TagDocument document_;
  TextEncoding encoding_;
  std::vector<BoundObject> bound_;
  std::set<AcDbStub*> implied_;
  std::unordered_map<AcDbStub*, std::uint32_t> blockEnds_;
  std::vector<DrawingBinding::Waiting> waiting_;
  bool hasHandles_;
  std::vector<bool> changed_;
};

}  // namespace

DrawingFile::DrawingFile() : binding_(std::make_unique<DrawingBinding>()) {}
DrawingFile::~DrawingFile() = default;

Result<std::unique_ptr<DrawingFile>> DrawingFile::open(const std::string& path,
                                                       const Progress& progress) {
  if (fileKind(path) == FileKind::kMissing) {
    return Status::error(path + ": there is no such file.");
  }
  if (fileKind(path) != FileKind::kRegular) return Status::error(path + ": this is no file.");
  auto bytes = readFile(path, kMostBytes);
  if (!bytes) return Status::error(bytes.message() + ".");
  if (progress) progress(kFileRead);
  return fromBytes(bytes.take(), path, progress);
}

Result<std::unique_ptr<DrawingFile>> DrawingFile::fromBytes(std::string bytes,
                                                            const std::string& name,
                                                            const Progress& progress) {
  registerDatabaseClasses();
  DeepCloner::install();
  if (isDwg(bytes)) {
    return Status::error(name +
                         ": this is a DWG file, which cannot be read here; save it as DXF in "
                         "the program that it comes from.");
  }
  std::unique_ptr<DrawingFile> file(new DrawingFile);
  file->form_.binary = isBinaryDrawing(bytes);
  if (file->form_.binary) {
    auto ascii = asciiFromBinary(bytes, name);
    if (!ascii) return ascii.status();
    bytes = ascii.take();
  }
  auto document = TagDocument::parse(std::move(bytes), name);
  if (!document) return document.status();
  if (progress) progress(kTagsFound);
  DrawingBinding& binding = *file->binding_;
  binding.document = document.take();
  binding.encoding = TextEncoding(binding.document);
  binding.hasHandles = usesHandles(binding.document);
  binding.database = std::make_unique<AcDbDatabase>(false);
  ObjectAccess::state(*binding.database).nextHandle = firstFreeHandle(binding.document);
  const TagDocument& tags = binding.document;
  file->form_.version = tags.version();
  if (!tags.isComplete()) {
    file->notes_.push_back(
        nameOf(name) + ": the file ends at line " +
        std::to_string(tags.lineOf(static_cast<std::uint32_t>(tags.tags().size()))) +
        " without its end mark; what stands before was read, and what followed is missing.");
  }
  if (tags.hasTrailingBytes()) {
    file->notes_.push_back(nameOf(name) + ": something follows the end mark; it is kept.");
  }
  bindTables(binding);
  bindBlocks(binding);
  bindEntities(binding, [&](double share) {
    if (progress) progress(kTagsFound + static_cast<int>((kEntitiesRead - kTagsFound) * share));
  });
  bindDictionaries(binding);
  file->noteKept();
  return file;
}

void DrawingFile::noteKept() {
  size_t count = 0;
  std::string kinds;
  for (const auto& [kind, number] : binding_->kept) {
    count += number;
    kinds += (kinds.empty() ? "" : ", ") + toUtf8(binding_->encoding.decode(kind));
  }
  if (count == 0) return;
  const bool one = count == 1;
  notes_.push_back(std::to_string(count) + (one ? " object" : " objects") + " of " +
                   (binding_->kept.size() == 1 ? "kind " : "kinds ") + kinds +
                   (one ? " is" : " are") + " kept but not drawn.");
}

std::unique_ptr<DrawingFile> DrawingFile::createNew() {
  auto made = fromBytes(newDrawingBytes(kVersionOfNew), "new drawing");
  return made.take();
}

AcDbDatabase& DrawingFile::database() const {
  return *binding_->database;
}

OpeningState DrawingFile::state() const {
  return drawingState(*binding_);
}

bool DrawingFile::isOld() const {
  return binding_->document.isOld();
}

std::string DrawingFile::reasonAgainstVersion() const {
  return isOld() ? reasonAgainstOld(*binding_) : std::string();
}

Status DrawingFile::makeModern() {
  if (!isOld()) return {};
  const Status status = modernize(*binding_);
  if (status) form_.version = binding_->document.version();
  return status;
}

Status DrawingFile::setForm(const SavedForm& form) {
  const TagDocument& document = binding_->document;
  const std::string now(document.version());
  if (form.version != form_.version && form.version != now) {
    if (Status status = canBeVersion(document, form.version); !status) return status;
    // What is written anew follows the version of the ground, which so has to be the later one.
    if (form.version > now) {
      std::string later;
      const auto made =
          giveAsVersion([&](const PieceTaker& take) { return take(document.bytes()); },
                        {document, binding_->encoding}, form.version, gatherIn(later));
      if (!made) return made.status();
      raiseVersion(*binding_, std::move(later));
    }
  }
  form_ = form;
  return {};
}

Status DrawingFile::giveInVersion(const DrawingPieces& pieces, const PieceTaker& take) {
  leftOut_.clear();
  if (form_.version == binding_->document.version()) return pieces(take);
  const auto made =
      giveAsVersion(pieces, {binding_->document, binding_->encoding}, form_.version, take);
  if (!made) return made.status();
  const size_t count = made.value();
  if (count > 0) {
    leftOut_ = std::to_string(count) + (count == 1 ? " value" : " values") + " that " +
               nameOfVersion(form_.version) +
               " does not know (true colours, gradients and the like) " +
               (count == 1 ? "is" : "are") + " not in the file.";
  }
  return {};
}

size_t DrawingFile::bindRegisteredClasses() {
  const size_t made = bindWaiting(*binding_);
  if (made > 0) {
    ObjectAccess::tell(database(), [&](AcDbDatabaseReactor& reactor) {
      reactor.proxyResurrectionCompleted(&database(), L"");
    });
  }
  return made + resurrectFiled(database());
}

Status DrawingFile::write(const std::optional<OpeningState>& state, const PieceTaker& take) {
  const std::string reason = reasonAgainstVersion();
  if (!reason.empty()) return Status::error(reason + " Nothing was saved.");
  const DrawingPieces whole = wholeFile(state);
  if (!form_.binary) return giveInVersion(whole, take);
  const DrawingPieces text = [&](const PieceTaker& next) { return giveInVersion(whole, next); };
  return giveAsBinary(text, {binding_->document, binding_->encoding}, "The drawing", take);
}

Status DrawingFile::writeCopy(const std::optional<OpeningState>& state, const PieceTaker& take) {
  if (reasonAgainstVersion().empty()) return wholeFile(state)(take);
  const GroundKeeper keeper(*binding_);
  if (Status status = modernize(*binding_); !status) return status;
  return wholeFile(state)(take);
}

Result<std::string> DrawingFile::bytes(const std::optional<OpeningState>& state) {
  std::string whole;
  const Status status = write(state, gatherIn(whole));
  if (!status) return status;
  return whole;
}

DrawingPieces DrawingFile::wholeFile(const std::optional<OpeningState>& state) {
  DrawingPieces pieces = writeDrawing(*binding_, state);
  AcDbObjectId front = binding_->paperSpace;
  if (state && !state->frontSheet.isNull()) front = state->frontSheet;
  if (front.isErased()) front = firstSheet(database());
  if (front == binding_->paperSpace || front.isNull()) return pieces;
  return withFrontSheet(std::move(pieces), {binding_->document, binding_->encoding},
                        front.handle().value());
}

}  // namespace tarn::host
