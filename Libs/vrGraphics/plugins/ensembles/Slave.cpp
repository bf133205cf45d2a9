#include "vrGraphics/plugins/ensembles/Slave.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"

namespace
{

void Add_Parent_Name(ParameterListClass &parameters)
{
    parameters.Add_String(300, "Parent Name", "", SpawnerText::PARENT_NAME);
}

} // namespace

vrMKPSlaveSpawner::vrMKPSlaveSpawner()
{
    Add_Parent_Name(Parameters);
    Parameters.Add_Vector3(301, "Position Offset", Vector3(0.0f),
                           "Amount to offset child particle's position.\nBe careful, if you have other slave plugins "
                           "going, they may just override what you enter here.");
}

vrMKPSlaveModifier::vrMKPSlaveModifier()
{
    Add_Parent_Name(Parameters);
}
