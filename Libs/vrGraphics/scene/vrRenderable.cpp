#include "vrGraphics/scene/vrRenderable.h"

MK_DEFINE_RUN_TIME_TYPE_ROOT(CullObjectClass)
MK_DEFINE_RUN_TIME_TYPE(vrRenderable, CullObjectClass)
MK_DEFINE_RUN_TIME_TYPE(vrParticleInterface, vrRenderable)
