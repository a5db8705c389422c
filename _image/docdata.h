// What the module keeps for one open document: its image entity and the list of its images.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "acdb.h"
#include "adsdef.h"
#include "dbid.h"

class AcApDocument;
class AcDbDatabase;
class CCadImage;
class TarnClientManager;

class CDocData {
 public:
  struct Image {
    std::wstring path;
    bool isDisplayed = true;
  };

  /// A point cloud that was attached in this session: its file and its entity.
  struct PointCloud {
    std::wstring path;
    AcDbObjectId id;
  };

  explicit CDocData(AcApDocument* document);
  ~CDocData();
  CDocData(const CDocData&) = delete;
  CDocData& operator=(const CDocData&) = delete;

  AcDbDatabase* database() const { return m_database; }

  /// The images in their order, which list, drawing and stored record follow. Paths are full and
  /// compared case-sensitively.
  const std::vector<Image>& images() const { return m_images; }
  /// A number that no list of any document had before its last change.
  uint64_t listRevision() const { return m_listRevision; }
  bool contains(const std::wstring& path) const;
  bool isDisplayed(const std::wstring& path) const;
  /// Enters a path at the end, or switches on one that is there.
  void addDisplayed(const std::wstring& path);
  void setDisplayed(const std::wstring& path, bool isDisplayed);
  /// False when there was none.
  bool remove(const std::wstring& path);
  /// Those of `paths` that are here, in that order; others follow in the order they had.
  void reorder(const std::vector<std::wstring>& paths);

  /// The image entity while it is not in the drawing yet; owned here. Null otherwise.
  CCadImage* pendingImage() const { return m_pending.get(); }
  /// The image entity in the drawing: the one known here unless it was erased, else the first in
  /// model space. Null id when there is none.
  AcDbObjectId residentImage();
  bool hasImage() { return m_pending || !residentImage().isNull(); }
  /// Makes an entity when there is none, resident or not.
  void ensureImage();
  /// Drops the pending entity: one has come back into the drawing.
  void forgetPending();
  /// The pending entity, given away to the drawing that has just appended it as `id`.
  void becameResident(AcDbObjectId id);

  const std::vector<PointCloud>& pointClouds() const { return m_pointClouds; }
  void addPointCloud(const std::wstring& path, AcDbObjectId id) {
    m_pointClouds.push_back({path, id});
  }

  /// Takes over the client of an image of a server. It tells when the image has changed, and lives
  /// until closeImage() or the record's end.
  TarnClientManager* keepClient(std::unique_ptr<TarnClientManager> client);
  /// Closes the source of an image, of either kind, and takes it out of the entity. The list stays
  /// as it is. False when there was none.
  bool closeImage(const std::wstring& path);

  /// True once the drawing's stored images have been bound.
  bool isRestored() const { return m_isRestored; }
  void setRestored() { m_isRestored = true; }

 private:
  const Image* find(const std::wstring& path) const;
  Image* find(const std::wstring& path);
  void numberImages();
  void changed();
  void setResident(AcDbObjectId id);

  AcDbDatabase* m_database;
  std::unique_ptr<CCadImage> m_pending;
  AcDbObjectId m_residentId;
  std::vector<Image> m_images;
  std::unordered_map<std::wstring, size_t> m_places;  ///< of each path in m_images
  uint64_t m_listRevision = 0;
  std::vector<PointCloud> m_pointClouds;
  std::vector<std::unique_ptr<TarnClientManager>> m_clients;
  ads_name m_entityName{};  ///< what clients know the entity by
  bool m_isRestored = false;
};

/// A record's image entity for a short time: the pending one, or the one in the drawing, opened and
/// closed again.
class OpenedImage {
 public:
  OpenedImage(CDocData& record, AcDb::OpenMode mode);
  ~OpenedImage();
  OpenedImage(const OpenedImage&) = delete;
  OpenedImage& operator=(const OpenedImage&) = delete;

  /// Null when there is none or it could not be opened.
  CCadImage* get() const { return m_image; }
  CCadImage* operator->() const { return m_image; }
  explicit operator bool() const { return m_image != nullptr; }

 private:
  CCadImage* m_image = nullptr;
  bool m_isResident = false;
};
