#include "app/sondarmain.h"

int main(int argc, char **argv)
{
    return sondarMain(argc, argv);
}
