#include "ui/app/BLApplication.h"

int main(int argc, char** argv)
{
    BLApplication app(argc, argv);
    return app.run();
}
