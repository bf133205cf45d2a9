#pragma once

#include "MKLib/RefCount.h"

/// The run-time state of one layer of one instance, the only thing about a layer that isn't shared by all instances.
///
/// The values of the level of detail are copies of the spawner's parameters. A running layer heeds these, so that an
/// edit shows when the layer pushes it and not in the middle of a frame.
class vrMKPBuffer final : public RefCountClass
{
public:
    int GlobalLOD = 0;               ///< least global quality at which the layer runs, 0 to 4
    float MinDynamicLOD = 1.0f;      ///< least fraction of the particles that is drawn
    float DynamicLODNear = 10000.0f; ///< world units, where thinning starts
    float DynamicLODFar = 10000.0f;  ///< world units, where the least fraction is reached
};
