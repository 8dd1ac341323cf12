#include "framework/kivcore/tests/FileWorker.h"

std::vector<std::string> WorkerArguments(int count, char** arguments)
{
    return {arguments + 1, arguments + count};
}
