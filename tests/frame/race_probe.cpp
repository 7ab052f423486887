// A data race in a parallel region. The build with ThreadSanitizer runs it to see that races of this kind are found.
#include <cstdio>

int main()
{
    int sum = 0;
#pragma omp parallel for schedule(static) num_threads(4)
    for (int i = 0; i < 100000; ++i) {
        const int seen = sum;
        sum = seen + i;
    }
    std::printf("%d\n", sum);
}
