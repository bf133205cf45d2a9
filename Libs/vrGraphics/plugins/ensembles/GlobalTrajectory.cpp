#include "vrGraphics/plugins/ensembles/GlobalTrajectory.h"

vrMKPGlobalTrajectoryStomper::vrMKPGlobalTrajectoryStomper()
{
    Parameters.Add_Float(200, "Trajectory Position", 99.0f, 0.0f, 100.0f,
                         "Where (percentage of length) to stomp particles");
    Parameters.Add_Bool(201, "Reverse Direction", false, "Stomp particles moving in the reverse direction instead.");
}
