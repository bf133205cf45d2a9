#include "Desktop/LevelNames.h"

QStringList Get_Level_Names()
{
    return {"Lowest", "Low", "Medium", "High", "Highest"};
}

QStringList Get_View_Mode_Names()
{
    return {"Far (lowest detail)", "Distant (low detail)", "Middle (medium detail)", "Near (high detail)",
            "Close (full detail)"};
}
