"""The one exception type of the library."""


class Error(Exception):
    """A raised failure.

    A device or a log of your own may raise it, too, or any other exception: it reaches the caller as it was raised.
    """

    __module__ = "tarvix"

    def __init__(self, number: int, source: str, description: str) -> None:
        """Takes a member of one of the error enumerations, or a number of your own."""
        super().__init__(number, source, description)

    @property
    def number(self) -> int:
        """The error number, equal to a member of one of the error enumerations; most are negative."""
        return self.args[0]

    @property
    def source(self) -> str:
        """The name of the class that raised the error, for example "clsLIN"."""
        return self.args[1]

    @property
    def description(self) -> str:
        """What went wrong, in English."""
        return self.args[2]

    def __str__(self) -> str:
        """The description."""
        return self.description
