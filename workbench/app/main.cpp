#include "Application.h"

int main(int argc, char *argv[])
{
    return workbench::runApplication(argc, argv);
}
