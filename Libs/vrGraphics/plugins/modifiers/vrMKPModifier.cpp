#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

void vrMKPModifier::Modify(vrMKPBuffer &buffer, int index) const
{
    Modify_Runs(buffer, index, vrMKPWalks(buffer));
}

void vrMKPModifier::Modify_Runs(vrMKPBuffer &buffer, int index, const vrMKPWalks &walks) const
{
    Prepare_Frame(buffer, index);
    for (const vrMKPSpan span : walks.Get(Get_Walk())) Apply(buffer, index, span);
}
