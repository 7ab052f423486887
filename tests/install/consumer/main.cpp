#include <vekcore.h>
#include <vekj.h>

#include <iostream>
#include <memory>

int main()
{
    const std::unique_ptr<void, decltype(&vekFree)> block(vekMalloc(100), &vekFree);
    if (block == nullptr)
        return 1;
    std::cout << vekjGetLibVersion()->versionText << '\n';
}
