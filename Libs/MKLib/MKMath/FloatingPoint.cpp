#include "MKLib/MKMath/FloatingPoint.h"

#include <cfenv>

void Init_Floating_Point_Mode()
{
    std::fesetenv(FE_DFL_ENV);
}
