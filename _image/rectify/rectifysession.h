// One image under rectification in its document: what is drawn, what the drawing keeps of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "_image/rectify/controlpoints.h"
#include "inc/iimagedivision.h"
#include "inc/irectifydialog.h"

class AcApDocument;
class CDocData;

namespace tarn::image {

/// The image's entity draws what the component shows once preview() was called, and what it drew
/// before after cancel(). What was accepted stands in the drawing, one step of undo each.
class RectifySession {
 public:
  /// Takes over the component, which has the image open. The document must have a record; it must
  /// outlive the session.
  RectifySession(kel::Object<IRectifyDialog> component, AcApDocument* document, std::wstring path);
  /// Ends the fading alone.
  ~RectifySession();
  RectifySession(const RectifySession&) = delete;
  RectifySession& operator=(const RectifySession&) = delete;

  IRectifyDialog& component() { return *component_.get(); }
  AcApDocument* document() const { return document_; }
  const std::wstring& path() const { return path_; }

  /// Method and points of the rectification that the component has taken over; method -1 when there
  /// is none.
  PointRecord earlierPoints();

  /// Hands points to the component, and what it has of them: the sources as it draws them now.
  std::vector<ControlPoint> handedPoints();
  void setPoints(const std::vector<ControlPoint>& points);

  // None of these draws; regenerate() does.
  /// Enters the component as the source of the image.
  void preview();
  bool isPreviewed() const { return isPreviewed_; }
  /// Takes a preview back that was never accepted; true when there was one.
  bool endPreview();
  /// The component's state is accepted now: stores it in the drawing, as one step of undo, and
  /// enters the component as the source of the image. False, after a message, when the drawing
  /// could not take it; everything is then as before.
  bool keepAccepted();
  /// The image and the drawing's record as they were before the session.
  void cancel();
  /// How much is seen of a preview, from now on: 0 to 1. Sources are not read again for it.
  void fade(double opacity);
  /// Draws the entity anew.
  void regenerate();
  /// Writes the record file beside the image; the sentence says why it failed. cancel() brings the
  /// old one back.
  std::string writePointFile(const PointRecord& record);

 private:
  CDocData* record() const;
  bool bind(const kel::Object<IImageDivision>& division);
  /// The image is seen through while a preview is shown.
  void followFade();
  bool store(const kel::List<double>& state);
  void restorePointFile();

  kel::Object<IRectifyDialog> component_;
  AcApDocument* document_;
  std::wstring path_;
  /// What the entity drew, and the component's numbers, before the session and after the last
  /// acceptance.
  kel::Object<IImageDivision> before_;
  kel::List<double> stateBefore_;
  kel::List<double> accepted_;
  std::optional<std::string> fileBefore_;
  bool isFileWritten_ = false;
  double opacity_ = 1;
  bool isPreviewed_ = false;
  bool wasAccepted_ = false;
};

}  // namespace tarn::image
