#include "programs/merchantry/fonts.h"

#ifdef MERCHANTRY_FONTCONFIG
#include <fontconfig/fontconfig.h>
#endif

namespace merchantry::programs {

void lookUpFonts() {
#ifdef MERCHANTRY_FONTCONFIG
    FcInit();
#endif
}

} // namespace merchantry::programs
