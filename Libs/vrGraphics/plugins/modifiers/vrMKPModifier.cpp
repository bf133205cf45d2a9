#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

void vrMKPModifier::Modify(vrMKPBuffer &buffer, int index) const
{
    Modify_Runs(buffer, index, Find_Walk_Runs(buffer));
}

void vrMKPModifier::Modify_Runs(vrMKPBuffer &buffer, int index, const vrMKPWalkSlots<vrMKPSpans> &runs) const
{
    Prepare_Frame(buffer, index);
    for (const vrMKPSpan span : runs.Get(Get_Walk())) Apply(buffer, index, span);
}
