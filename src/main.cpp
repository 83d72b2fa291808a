#include "ui/app/ClipwrightMain.h"

int main(int argc, char** argv)
{
    return clipwrightMain(argc, argv);
}
