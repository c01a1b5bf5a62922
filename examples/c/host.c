/* A host in C99: hands rules in, shows the dialog, prints what it gives back. */
#include <registry-rules/registry_rules.h>
#include <stdio.h>

static int fail(const char* what) {
    wchar_t text[500] = L"";
    size_t length = 0;
    rr_last_error(text, 500, &length);
    printf("%s: %ls\n", what, text);
    return 1;
}

static void print(rr_rules rules) {
    wchar_t key[1000], value[1000];
    size_t keys = 0, values = 0, i, length;
    int32_t is_branch, row;
    rr_rules_count(rules, &keys, &values);
    for (i = 0; i < keys; ++i) {
        if (rr_rules_get_key(rules, i, key, 1000, &length, &is_branch, &row) != RR_OK) continue;
        printf("%d: %ls%s\n", (int)row, key, is_branch ? " and all below" : "");
    }
    for (i = 0; i < values; ++i) {
        if (rr_rules_get_value(rules, i, key, 1000, &length, value, 1000, &length, &row) != RR_OK) continue;
        printf("%d: %ls value %ls\n", (int)row, key, value);
    }
}

int main(void) {
    rr_rules rules;
    int32_t answer = RR_UNCHANGED;
    if (rr_rules_create(&rules) != RR_OK) return fail("create");
    rr_rules_add_key(rules, L"HKCU\\Software\\Fernhollow", RR_TERMINATED, 1, 0);
    rr_rules_add_value(rules, L"HKCU\\Environment", RR_TERMINATED, L"TEMP", RR_TERMINATED, 1);
    if (rr_show(rules, NULL, &answer) != RR_OK) return fail("show");
    puts(answer == RR_CHANGED ? "changed" : "unchanged");
    print(rules);
    rr_rules_close(rules);
    return 0;
}
