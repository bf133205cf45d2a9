#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

MK_DEFINE_RUN_TIME_TYPE(vrMKPSimpleVisualizerData, vrMKPBufferPluginData)
