// Host services of the database with our support path.
#pragma once

#include "dbapserv.h"

namespace tarn::host {

class Profile;

class HostServices : public AcDbHostApplicationServices {
 public:
  explicit HostServices(const Profile& profile) : profile_(profile) {}
  Acad::ErrorStatus findFile(ACHAR* result, int capacity, const ACHAR* name, AcDbDatabase* database,
                             FindFileHint hint) override;

 private:
  const Profile& profile_;
};

}  // namespace tarn::host
