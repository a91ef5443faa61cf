"""Python's functions as the C interface calls them: texts as str, answers as results."""

from .abi import ADDED, ANSWER, ERROR, Text, borrowed, bytes_of, str_of

_BYTES = {("writeToFileAtomically", 0)}  # parameters that are no text


def adapted(tavlo, table, name, result, parameters, function):
    """The function with arguments and result as its callback has them."""
    def arguments(given):
        return [(bytes_of if (name, index) in _BYTES else str_of)(argument) if kind is Text else argument
                for index, (kind, argument) in enumerate(zip(parameters, given))]

    def package_text(_user, which, answer):
        tavlo.c.answer_text(answer, borrowed(function(tavlo.c.package_text_name(which).decode())))

    def answering(_user, *given):
        tavlo.c.answer_text(given[-1], borrowed(function(*arguments(given[:-1]))))

    def succeeding(_user, *given):
        try:
            function(*arguments(given[:-1]))
            return True
        except OSError as error:
            tavlo.c.answer_text(given[-1], borrowed(str(error)))
            return False

    def naming(_user, *given):
        names = function(*arguments(given[:-1]))
        for each in names or []:
            tavlo.c.names_add(given[-1], borrowed(each))
        return names is not None

    def recording(_user, records):
        for record in function() or []:
            handles = [None if value is None else tavlo.values.handle(value) for value in record]
            tavlo.c.tracker_records_add(records, *handles)
            for handle in handles:
                tavlo.c.value_free(handle)

    def setting(_user, value, key):
        function(tavlo.values.value(value), str_of(key))

    def getting(_user, key):
        value = function(str_of(key))
        return None if value is None else tavlo.values.handle(value)

    def positioning(_user, newest):
        position = function()
        if position is not None:
            newest[0].latitude, newest[0].longitude = position
        return position is not None

    def geocoding(_user, position, request):
        function((position[0].latitude, position[0].longitude) if position else None, request)

    special = {"text": package_text, "getNetworkTrackerDetails": recording, "setObjectForKey": setting,
               "objectForKey": getting, "location": positioning, "reverseGeocodeLocation": geocoding}
    if name in special:
        return special[name]
    by_result = {ANSWER: answering, ERROR: succeeding, ADDED: naming}
    if result in by_result:
        return by_result[result]
    plain = False if result is not None else None
    return lambda _user, *given: _or(function(*arguments(given)), plain)


def _or(value, otherwise):
    return otherwise if value is None else value
