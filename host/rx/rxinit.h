// Registration of the host's own run-time classes.
#pragma once

namespace tarn::host {

/// Registers the classes of host/rx and the dynamic linker. Idempotent; called by the static
/// registration of every folder above, since the order between translation units is open.
void registerRxClasses();

}  // namespace tarn::host
