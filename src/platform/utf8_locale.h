#pragma once

namespace tessaly {

// Qt reads and writes file names in the locale's encoding and complains on standard error when that is not
// UTF-8 (a bare "C" locale, for instance). Names are UTF-8 on the systems that we run on, so such a locale is
// replaced for this process and its children. To be called first in main(), before the application object is
// made.
void useUtf8Locale();

} // namespace tessaly
