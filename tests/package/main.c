/* Uses the installed library from C. */
#include <stdio.h>
#include <zimsr.h>

int main(void)
{
    const ZimVersion* version = zimsrGetLibVersion();
    Zim32f* block = zimsMalloc_32f(16);
    if (!block)
        return 1;
    zimsFree(block);
    printf("%s %s\n", version->name, version->version);
    return 0;
}
