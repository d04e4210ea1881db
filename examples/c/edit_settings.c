// SPDX-License-Identifier: BSL-1.0
#include <stdio.h>

#include <qzl_io_c.h>

static const char kSettings[] = "{settings ; of the player\n"
                                "\t{volume 0.5}\n"
                                "\t{files \"a.ogg\" \"b.ogg\"}\n"
                                "}\n";

// Says why the last call with the document failed.
static int Fail(const qzl_document* document) {
    qzl_mistake error = {.size = sizeof error};
    if (qzl_document_error(document, &error) == QZL_OK)
        (void)fprintf(stderr, "%s\n", *error.rendered ? error.rendered : error.message);
    return 1;
}

static int Edit(qzl_document* document) {
    double volume = 0;
    if (qzl_document_parse(document, kSettings, QZL_TERMINATED, "settings.sdl", QZL_TERMINATED) != QZL_OK ||
        qzl_document_get_number(document, "settings/volume", QZL_TERMINATED, &volume) != QZL_OK ||
        qzl_document_set_number(document, "settings/volume", QZL_TERMINATED, volume / 2) != QZL_OK ||
        qzl_document_insert(document, "settings", QZL_TERMINATED, QZL_WITHIN, "{mute 0}", QZL_TERMINATED) != QZL_OK ||
        qzl_document_save(document, "settings.sdl", QZL_TERMINATED) != QZL_OK)
        return Fail(document);

    const char* text = NULL;
    if (qzl_document_text(document, &text, NULL) != QZL_OK)
        return Fail(document);
    printf("%s", text);
    return 0;
}

// All that is wrong in a text, as compilers show it.
static int ShowMistakes(qzl_document* document) {
    size_t count = 0;
    qzl_mistake mistake = {.size = sizeof mistake};
    if (qzl_document_parse(document, "{settings {volume $}", QZL_TERMINATED, "wrong.sdl", QZL_TERMINATED) != QZL_OK ||
        qzl_document_check(document, NULL, SIZE_MAX, &count) != QZL_OK)
        return Fail(document);
    for (size_t i = 0; i < count; ++i)
        if (qzl_document_mistake(document, i, &mistake) == QZL_OK)
            printf("%s", mistake.rendered);
    return count == 2 ? 0 : 1;
}

// The numbers of a text, whatever blocks they are in.
static int AddNumbers(void) {
    qzl_reader* reader = NULL;
    qzl_token token = {.size = sizeof token};
    double sum = 0;
    qzl_status status = qzl_reader_new(&reader);
    if (status == QZL_OK)
        status = qzl_reader_parse(reader, "{a 1 {b 2.5} (+ 3 4)}", QZL_TERMINATED, NULL, 0);
    while (status == QZL_OK && (status = qzl_reader_next(reader, &token)) == QZL_OK)
        if (token.kind == QZL_KIND_INTEGER || token.kind == QZL_KIND_FLOAT)
            sum += token.number;
    qzl_reader_free(reader);
    printf("%s The sum is %g.\n", qzl_status_text(status), sum);
    return status == QZL_END ? 0 : 1;
}

int main(void) {
    qzl_document* document = NULL;
    if (qzl_document_new(&document) != QZL_OK)
        return 1;
    const int failed = Edit(document) || ShowMistakes(document);
    qzl_document_free(document);
    return failed || AddNumbers();
}
