#include "Application.h"

int main(int argc, char *argv[])
{
    return bench::runApplication(argc, argv);
}
