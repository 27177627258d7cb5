// Umbrella header: every public header of the library.
#ifndef ZRCOMMON920R_ZRCOMMON920R_H
#define ZRCOMMON920R_ZRCOMMON920R_H

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/common/value.h"
#include "zrcommon920r/common/warnings.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/dist/distfun.h"
#include "zrcommon920r/math/dist/mathfun.h"
#include "zrcommon920r/math/dist/power.h"
#include "zrcommon920r/math/hashkey.h"
#include "zrcommon920r/math/matrix/eigen.h"
#include "zrcommon920r/math/matrix/kernels.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/random/uniform.h"
#include "zrcommon920r/math/random/variates.h"
#include "zrcommon920r/math/stats/meansxprod.h"
#include "zrcommon920r/math/stats/xprodpair.h"
#include "zrcommon920r/xml/core/json.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/core/xmltree.h"
#include "zrcommon920r/xml/vars/encoder.h"
#include "zrcommon920r/xml/vars/ivariable.h"
#include "zrcommon920r/xml/vars/variable.h"
#include "zrcommon920r/xml/vars/varlist.h"

#endif  // ZRCOMMON920R_ZRCOMMON920R_H
