Tämä ei ole projekti.
