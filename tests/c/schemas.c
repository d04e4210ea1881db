// SPDX-License-Identifier: BSL-1.0
#include <stdio.h>
#include <string.h>

#include "check.h"

static const char kRules[] = "{schema\n"
                             "  {block scene {block light {count 0 many} {value float {range 0 10}}}}\n"
                             "}\n";

static void DocumentsAreCheckedAgainstSchemas(void) {
    qzl_schema* schema = NULL;
    qzl_mistake mistake = {.size = sizeof mistake};
    size_t count = 0;
    CHECK_STATUS(qzl_schema_new(&schema), QZL_OK);
    qzl_document* document = Parsed("{scene {light 1} {light 11} {lihgt 2}}");
    CHECK_STATUS(qzl_document_check(document, schema, SIZE_MAX, &count), QZL_OK);
    CHECK_NUMBER(count, 0);
    CHECK_STATUS(qzl_schema_parse(schema, kRules, Z, "rules.sdls", Z), QZL_OK);
    CHECK_STATUS(qzl_document_check(document, schema, SIZE_MAX, &count), QZL_OK);
    CHECK_NUMBER(count, 2);
    CHECK_STATUS(qzl_document_mistake(document, 0, &mistake), QZL_OK);
    CHECK_NUMBER(mistake.column, 25);
    CHECK_STATUS(qzl_document_mistake(document, 1, &mistake), QZL_OK);
    CHECK_TEXT(mistake.suggestion, "light");
    CHECK(strstr(mistake.rendered, "did you mean 'light'?") != NULL);
    qzl_document_free(document);
    qzl_schema_free(schema);
}

static void SchemasAreReadFromFiles(void) {
    qzl_schema* schema = NULL;
    size_t count = 0;
    qzl_document* rules = Parsed(kRules);
    CHECK_STATUS(qzl_document_save(rules, "c_rules.sdls", Z), QZL_OK);
    qzl_document_free(rules);
    CHECK_STATUS(qzl_schema_new(&schema), QZL_OK);
    CHECK_STATUS(qzl_schema_open(schema, "c_rules.sdls", Z), QZL_OK);
    remove("c_rules.sdls");
    qzl_document* document = Parsed("{scene {light 11}}");
    CHECK_STATUS(qzl_document_check(document, schema, SIZE_MAX, &count), QZL_OK);
    CHECK_NUMBER(count, 1);
    qzl_document_free(document);
    qzl_schema_free(schema);
}

static void MistakesOfSchemasAreTold(void) {
    qzl_schema* schema = NULL;
    qzl_mistake mistake = {.size = sizeof mistake};
    CHECK_STATUS(qzl_schema_new(&schema), QZL_OK);
    CHECK_STATUS(qzl_schema_mistake(schema, 0, &mistake), QZL_NOT_FOUND);
    CHECK_STATUS(qzl_schema_parse(schema, "{schema {blokc scene}}", Z, "rules.sdls", Z), QZL_MISTAKE);
    CHECK_STATUS(qzl_schema_error(schema, &mistake), QZL_OK);
    CHECK_TEXT(mistake.source, "rules.sdls");
    CHECK_STATUS(mistake.status, QZL_MISTAKE);
    CHECK_STATUS(qzl_schema_mistake(schema, 0, &mistake), QZL_OK);
    CHECK_NUMBER(mistake.line, 1);
    CHECK_TEXT(mistake.suggestion, "block");
    CHECK_STATUS(qzl_schema_open(schema, "no/such/file.sdls", Z), QZL_FILE);
    CHECK_STATUS(qzl_schema_mistake(schema, 0, &mistake), QZL_NOT_FOUND);
    qzl_schema_free(schema);
}

void TestSchemas(void) {
    DocumentsAreCheckedAgainstSchemas();
    SchemasAreReadFromFiles();
    MistakesOfSchemasAreTold();
}
