#include "components/interaction/interaction.h"

#include "inc/callbackprogressbar.h"
#include "inc/kcore.h"

namespace tarn::interaction {

Interaction::Interaction() {
  // Asked without the handle's assertion: running without a user interface is no fault.
  void* made = nullptr;
  kel::createObject("N", IUserInterface::interfaceId(), &made);
  user_ = kel::Object<IUserInterface>::adopt(static_cast<IUserInterface*>(made));
}

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
