#include <stdio.h>
#include <vekcore.h>
#include <vekj.h>

int main(void)
{
    if ((vekGetEnabledCpuFeatures() & VEK_CPU_AVX2) == 0)
        return 1;
    puts(vekjGetLibVersion()->versionText);
    return 0;
}
