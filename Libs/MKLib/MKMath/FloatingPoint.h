#pragma once

/// Puts the calling thread's floating-point unit into the engine's mode: rounding to nearest, exceptions masked,
/// denormals kept as IEEE 754 has them and not flushed to zero. Programs that load a library may find another mode set,
/// and the engine's results must be the same bits everywhere: those of a thread that flushes denormals aren't. The
/// threads of the pool take the mode of whoever gives them work.
void Init_Floating_Point_Mode();
