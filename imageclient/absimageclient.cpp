#include "imageclient/absimageclient.h"

#include <utility>

namespace {

AbsImageClient::Releaser& releaser() {
  static AbsImageClient::Releaser instance;
  return instance;
}

}  // namespace

void AbsImageClient::freeBuffer(unsigned char* buffer) {
  delete[] buffer;
}

void AbsImageClient::setReleaser(Releaser newReleaser) {
  releaser() = std::move(newReleaser);
}

bool AbsImageClient::close(const kel::DString& path) {
  return releaser() && releaser()(path);
}
