// Registration of the database's run-time classes.
#pragma once

namespace tarn::host {

/// Idempotent. Runs by itself before main; anything that makes objects earlier calls it first.
void registerDatabaseClasses();

}  // namespace tarn::host
