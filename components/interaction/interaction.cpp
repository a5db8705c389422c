#include "components/interaction/interaction.h"

#include "inc/callbackprogressbar.h"
#include "inc/icadadapter.h"
#include "inc/kcore.h"

namespace tarn::interaction {
namespace {

/// Asked for without the handle's assertion: running without a host is no fault.
template <typename Interface>
kel::Object<Interface> find() {
  void* made = nullptr;
  kel::createObject("N", Interface::interfaceId(), &made);
  return kel::Object<Interface>::adopt(static_cast<Interface*>(made));
}

}  // namespace

bool isEnglish() {
  const kel::Object<ICadAdapter> host = find<ICadAdapter>();
  return !host.isNull() && host->systemVariable("LOCALE").toString().str() == "ENU";
}

std::string pyramidLabel(const std::string& name) {
  constexpr Text kPyramid = {"金字塔 ", "Pyramid of "};
  return kPyramid.in(isEnglish()) + name;
}

Interaction::Interaction() : user_(find<IUserInterface>()) {}

void Interaction::message(const std::string& text) const {
  if (!user_.isNull()) user_->message(text);
}

bool Interaction::cancelWanted() const {
  return !user_.isNull() && user_->cancelWanted();
}

std::string Interaction::cacheFolder() const {
  return user_.isNull() ? std::string() : user_->folder(IUserInterface::Folder::kCache).str();
}

void Interaction::count(const raster::ReadCounts& counts) const {
  if (user_.isNull()) return;
  user_->count("windows", 1);
  user_->count("pixels", static_cast<long long>(counts.pixels));
  user_->count("bytes", static_cast<long long>(counts.bytes));
  user_->count("tiles_read", static_cast<long long>(counts.tilesRead));
  user_->count("tiles_cached", static_cast<long long>(counts.tilesCached));
}

ProgressScope::ProgressScope(const std::string& label, int first, int last)
    : first_(first), last_(last), position_(first) {
  if (CallBackProgressBar* bar = kel::Core::progressBar()) bar->start(label.c_str(), first, last);
}

ProgressScope::~ProgressScope() {
  if (CallBackProgressBar* bar = kel::Core::progressBar()) bar->end();
}

void ProgressScope::move(double part) {
  const int position = first_ + static_cast<int>((last_ - first_) * part);
  if (position == position_) return;
  position_ = position;
  if (CallBackProgressBar* bar = kel::Core::progressBar()) bar->setPosition(position);
}

}  // namespace tarn::interaction
