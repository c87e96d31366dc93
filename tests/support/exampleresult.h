#pragma once

#include <QString>

/// The result for an object "ЗУ1" of two contours in the tables "Участки" and "Координаты", with
/// updating, an object column before the designation's, and the field "знак" in the fourth column.
inline QString exampleResult()
{
    return QString::fromUtf8(R"(
<FormTable Name="Участки" Update="1">
    <Row>
        <Cell/>
        <Cell>ЗУ1</Cell>
        <FormTable Name="Координаты">
            <Row>
                <Cell>1</Cell>
                <Cell>100.00</Cell>
                <Cell>200.00</Cell>
                <Cell>знак</Cell>
            </Row>
            <Row>
                <Cell>2</Cell>
                <Cell>110.50</Cell>
                <Cell>200.00</Cell>
                <Cell>знак</Cell>
            </Row>
            <Row>
                <Cell>3</Cell>
                <Cell>110.50</Cell>
                <Cell>215.25</Cell>
                <Cell>знак</Cell>
            </Row>
            <Row/>
            <Row>
                <Cell>4</Cell>
                <Cell>120.00</Cell>
                <Cell>230.00</Cell>
                <Cell>знак</Cell>
            </Row>
            <Row>
                <Cell>5</Cell>
                <Cell>125.75</Cell>
                <Cell>230.00</Cell>
                <Cell>знак</Cell>
            </Row>
        </FormTable>
    </Row>
</FormTable>)");
}
